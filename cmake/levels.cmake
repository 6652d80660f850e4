# The instruction-set levels that kernels are compiled for, lowest first (`enum Isa` has the same order),
# and their flags. The first is the target's baseline, the others are x86's.
set(NUQI_LEVEL_NAMES base avx2 avx512)
set(NUQI_FLAGS_base "")
# Tuned for real processors: for its generic one, GCC 12 loads a register again for every further use.
set(NUQI_FLAGS_avx2 -mavx2 -mtune=skylake)
# AVX-512 as of Ice Lake and Zen 4: byte permutations and byte dot products halve the time of much that
# works on bytes. Its first processors, without these, clock down for 512 bits and run the AVX2 level.
set(NUQI_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi -mavx512vnni
  -mtune=icelake-server -mprefer-vector-width=512)

set(NUQI_MAX_LEVEL avx512 CACHE STRING "The highest level to build")
set_property(CACHE NUQI_MAX_LEVEL PROPERTY STRINGS ${NUQI_LEVEL_NAMES})

# NUQI_LEVEL_NAMES keeps those that this build holds; NUQI_LEVELS counts them.
list(FIND NUQI_LEVEL_NAMES "${NUQI_MAX_LEVEL}" NUQI_LEVELS)
if(NUQI_LEVELS EQUAL -1)
  message(FATAL_ERROR "NUQI_MAX_LEVEL is none of ${NUQI_LEVEL_NAMES}: ${NUQI_MAX_LEVEL}")
endif()
set(NUQI_X86_32 OFF)
if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  set(NUQI_LEVELS 0)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(NUQI_X86_32 ON)
endif()
if(NUQI_PLAIN)
  set(NUQI_LEVELS 0)
endif()
math(EXPR NUQI_LEVELS "${NUQI_LEVELS} + 1")
list(SUBLIST NUQI_LEVEL_NAMES 0 ${NUQI_LEVELS} NUQI_LEVEL_NAMES)
