# Compiler, cache and sanitizer settings that every target shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# What links a shared library of ours need not be linked again when only the library's code has changed.
set(CMAKE_LINK_DEPENDS_NO_SHARED ON)

option(HALCYRA_FUZZ "build the fuzz targets only, with libFuzzer" OFF)
set(HALCYRA_SANITIZE "" CACHE STRING "sanitizers, as -fsanitize takes them")

if(HALCYRA_SANITIZE)
  add_compile_definitions(HALCYRA_SANITIZED)
  add_compile_options(-fsanitize=${HALCYRA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  # With GCC these take as long to compile as all the rest together. The address sanitizer sees most of what they see,
  # and the fuzz targets, built with clang, keep them.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-sanitize=null$<COMMA>vptr$<COMMA>object-size$<COMMA>alignment>)
  add_link_options(-fsanitize=${HALCYRA_SANITIZE})
  # What a report needs to name a line, and no more; programs of that size are linked one by one.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -DNDEBUG")
  set_property(GLOBAL PROPERTY JOB_POOLS link=1)
  set(CMAKE_JOB_POOL_LINK link)
  if(HALCYRA_SANITIZE STREQUAL "thread")
    # The sanitizer does not know stand-alone fences; Asio's queues are in step by their mutexes anyway.
    add_compile_definitions(BOOST_ASIO_DISABLE_FENCED_BLOCK)
  endif()
endif()

# The cache is shared between checkouts: paths are relative to this one, precompiled headers included.
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
    CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_INODECACHE=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
endif()
find_program(LLD ld.lld)
if(LLD)
  add_link_options(-fuse-ld=lld)
endif()
