# One INTERFACE target carries every flag; all our own targets link it, so no flag is set anywhere else.
add_library(fernwick_flags INTERFACE)

target_compile_options(fernwick_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wold-style-cast -Wnon-virtual-dtor
  -fvisibility=hidden -fno-omit-frame-pointer)
if(FERNWICK_WERROR)
  target_compile_options(fernwick_flags INTERFACE -Werror)
endif()

target_compile_definitions(fernwick_flags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)

if(FERNWICK_SANITIZE)
  target_compile_options(fernwick_flags INTERFACE -fsanitize=${FERNWICK_SANITIZE} -fno-sanitize-recover=all)
  target_link_options(fernwick_flags INTERFACE -fsanitize=${FERNWICK_SANITIZE})
endif()
if(FERNWICK_FUZZ)
  target_compile_options(fernwick_flags INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(fernwick_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The headers that nearly every file with a window in it reads; compiled once per target, they halve its build.
set(FERNWICK_QT_HEADERS <QApplication> <QMainWindow> <QPainter> <QBoxLayout> <QLabel> <QPushButton> <QStyle>)
set(FERNWICK_STANDARD_HEADERS <chrono> <expected> <functional> <map> <memory> <optional> <string> <unordered_map>
  <vector>)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Without the time in it a precompiled header is the same for the same input, and ccache can keep what uses it.
  add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
endif()

# A floor is a static library named fernwick_<floor>; it sees src/ as its include root.
function(fernwick_floor name)
  cmake_parse_arguments(FLOOR "" "" "SOURCES;LINKS;PRIVATE_LINKS;PRECOMPILE" ${ARGN})
  add_library(fernwick_${name} STATIC ${FLOOR_SOURCES})
  target_include_directories(fernwick_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(fernwick_${name} PUBLIC fernwick_flags ${FLOOR_LINKS} PRIVATE ${FLOOR_PRIVATE_LINKS})
  if(FLOOR_PRECOMPILE)
    target_precompile_headers(fernwick_${name} PRIVATE ${FLOOR_PRECOMPILE} ${FERNWICK_STANDARD_HEADERS})
  endif()
endfunction()
