# Defines nuqi::nuqi (shared), nuqi::nuqi_static and, for the C++ header, nuqi::hpp and nuqi::hpp_static.
include(${CMAKE_CURRENT_LIST_DIR}/nuqi-targets.cmake)
