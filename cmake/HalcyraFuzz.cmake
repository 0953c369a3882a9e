# Fuzz targets: fuzz/<name>.cpp becomes fuzz_<name>, built with clang's libFuzzer under address and
# undefined-behaviour sanitizers. Seeds stand in fuzz/corpus/<name>/.
find_package(Boost 1.81 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core)
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -DNDEBUG")
add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
add_link_options(-fsanitize=address,undefined)

halcyra_library(tarn STATIC tarn EXCLUDE tarn/qt LINK Boost::headers Threads::Threads nlohmann_json::nlohmann_json)

file(GLOB targets CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS targets)
  get_filename_component(name ${source} NAME_WE)
  add_executable(fuzz_${name} ${source})
  target_link_libraries(fuzz_${name} PRIVATE tarn)
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endforeach()

# Parsers outside of tarn: the reader of the event stream,
target_sources(fuzz_mediaurl PRIVATE ${CMAKE_SOURCE_DIR}/ombra/base/percent.cpp)
target_sources(fuzz_eventstream PRIVATE ${CMAKE_SOURCE_DIR}/common/media/library/eventstream.cpp
  ${CMAKE_SOURCE_DIR}/common/media/address/medialogging.cpp)
target_link_libraries(fuzz_eventstream PRIVATE Qt6::Core)
halcyra_qt_definitions(fuzz_eventstream)

# and what a playlist believes of a drag.
set(items entrypayload guimediacollection guimediaitemfactory guimediaslot guiplaylist guiplaylistentry mimedata slotmimedata)
list(TRANSFORM items REPLACE "(.+)" "${CMAKE_SOURCE_DIR}/common/media/items/\\1.cpp")
target_sources(fuzz_drop PRIVATE ${CMAKE_SOURCE_DIR}/common/views/playlist/playlistdrop.cpp ${items}
  ${CMAKE_SOURCE_DIR}/common/media/address/mediafiles.cpp ${CMAKE_SOURCE_DIR}/common/media/address/mediautils.cpp
  ${CMAKE_SOURCE_DIR}/common/media/address/medialogging.cpp)
target_link_libraries(fuzz_drop PRIVATE Qt6::Core)
halcyra_qt_definitions(fuzz_drop)

# What a slot believes of one.
target_sources(fuzz_slotdrop PRIVATE ${CMAKE_SOURCE_DIR}/common/import/slotpayload.cpp ${items}
  ${CMAKE_SOURCE_DIR}/common/media/address/mediafiles.cpp ${CMAKE_SOURCE_DIR}/common/media/address/mediautils.cpp
  ${CMAKE_SOURCE_DIR}/common/media/address/medialogging.cpp)
target_link_libraries(fuzz_slotdrop PRIVATE Qt6::Core)
halcyra_qt_definitions(fuzz_slotdrop)
set_target_properties(fuzz_drop fuzz_slotdrop PROPERTIES AUTOMOC ON) # a drag of the library is a class of its own
