# Lists the public header's functions with their families, for `nuqi info`: the header is the one
# place that knows them. A family is a "---- Name ----" line, a function an NUQI_API line.
set(header ${PROJECT_SOURCE_DIR}/include/nuqi/nuqi.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${header})
file(STRINGS ${header} lines REGEX "^(NUQI_API .*|/\\* ---- .*)")
set(functions "")
foreach(line IN LISTS lines)
  if(line MATCHES "^/\\* ---- ([^-]+) --")
    set(family "${CMAKE_MATCH_1}")
  elseif(line MATCHES "^NUQI_API .*[ *](nuqi[A-Za-z0-9_]+)\\(")
    string(APPEND functions "{\"${family}\", \"${CMAKE_MATCH_1}\"},\n")
  endif()
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/functions.inc CONTENT "${functions}" @ONLY)
