# Defines nuqi::nuqi (shared) and nuqi::nuqi_static.
include(${CMAKE_CURRENT_LIST_DIR}/nuqi-targets.cmake)
