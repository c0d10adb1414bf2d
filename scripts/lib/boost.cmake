# Builds Boost.Filesystem's sources as one static library; copied beside them by the set-up script.
cmake_minimum_required(VERSION 3.25)
project(boost_filesystem LANGUAGES CXX)
file(GLOB sources "${CMAKE_CURRENT_SOURCE_DIR}/libs/filesystem/src/*.cpp")
add_library(ovi_boost_filesystem STATIC ${sources})
set_target_properties(ovi_boost_filesystem PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden)
target_compile_features(ovi_boost_filesystem PRIVATE cxx_std_17)
target_compile_options(ovi_boost_filesystem PRIVATE -w)
target_compile_definitions(ovi_boost_filesystem PRIVATE BOOST_FILESYSTEM_SOURCE BOOST_FILESYSTEM_STATIC_LINK=1
  BOOST_ALL_NO_LIB $<$<PLATFORM_ID:Windows>:_WIN32_WINNT=0x0A00>)
target_include_directories(ovi_boost_filesystem PRIVATE "${CMAKE_INSTALL_PREFIX}/include")
install(TARGETS ovi_boost_filesystem ARCHIVE DESTINATION lib)
