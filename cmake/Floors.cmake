# Floors: one static library for each, which sees only the headers of the floors it names.
#
# Headers are included by their path from the root ("platform/files/file_manager.h"), yet there is
# no include path to the root: every floor gets a folder of its own under build/floors that holds
# nothing but a link to it. A floor that was not named is out of the compiler's sight.

find_package(Threads REQUIRED)

add_library(zelmora_options INTERFACE)
target_compile_options(zelmora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # Clang checks that what a lock guards is used under that lock (platform/threads).
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>
  # GCC 12 sees overlapping copies in "x" + std::string at -O3 where there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# Assertions of the standard library: cheap ones, on in every build that is not packaged.
target_compile_definitions(zelmora_options INTERFACE
  $<$<NOT:$<CONFIG:Release>>:_GLIBCXX_ASSERTIONS>)
if(ZELMORA_SANITIZE)
  add_compile_options(-fsanitize=${ZELMORA_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ZELMORA_SANITIZE})
endif()

# zelmora_floor(NAME FOLDER SOURCES a.cpp ... [CALLS lower_floor ...] [LINKS library ...])
# CALLS are floors whose headers this floor's own headers or sources include; LINKS are outside
# libraries, which stay private to the floor.
function(zelmora_floor name folder)
  cmake_parse_arguments(arg "" "" "SOURCES;CALLS;LINKS" ${ARGN})
  set(root ${CMAKE_BINARY_DIR}/floors/${name})
  get_filename_component(parent ${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${root}/${parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
  if(arg_SOURCES)
    add_library(${name} STATIC ${arg_SOURCES})
    target_include_directories(${name} PUBLIC ${root})
    target_link_libraries(${name} PUBLIC ${arg_CALLS} Threads::Threads
      PRIVATE zelmora_options ${arg_LINKS})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${root})
    target_link_libraries(${name} INTERFACE ${arg_CALLS})
  endif()
endfunction()
