# The instruction-set levels that kernels are compiled for: NUQI_LEVEL_NAMES, and their flags in
# NUQI_FLAGS_<name>. The first is the baseline.
set(NUQI_LEVEL_NAMES base)
set(NUQI_FLAGS_base "")
# Tuned for real processors: for its generic one, GCC 12 loads a register again for every further use.
set(NUQI_FLAGS_avx2 -mavx2 -mtune=skylake)
# AVX-512 as of Ice Lake and Zen 4: byte permutations and byte dot products halve the time of much that
# works on bytes. Its first processors, without these, clock down for 512 bits and run the AVX2 level.
set(NUQI_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq -mavx512vbmi -mavx512vnni
  -mtune=icelake-server -mprefer-vector-width=512)

set(NUQI_X86_32 OFF)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(NUQI_X86_32 ON)
  endif()
  if(NOT NUQI_PLAIN AND NUQI_MAX_LEVEL MATCHES "^avx")
    list(APPEND NUQI_LEVEL_NAMES avx2)
  endif()
  if(NOT NUQI_PLAIN AND NUQI_MAX_LEVEL STREQUAL avx512)
    list(APPEND NUQI_LEVEL_NAMES avx512)
  endif()
endif()
list(LENGTH NUQI_LEVEL_NAMES NUQI_LEVELS)
