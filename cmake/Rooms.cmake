# Flags, and the functions that make the targets of the house.

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# The rooms are linked into programs, where no function can be replaced by another of its name: the compiler may
# put small ones where they are called, although the toolkit wants code that could stand in a shared library.
add_compile_options($<$<CONFIG:Release>:-fno-semantic-interposition>)
# Optimising, g++ 12 takes the slots of a tagged union for uninitialised whatever the tag says.
add_compile_options(-Wno-maybe-uninitialized)
# Qt's implicit conversions from C strings hide the encoding; keyword macros clash with our names.
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS)
if(ORVELLES_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

if(ORVELLES_LIBFUZZER)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  if(ORVELLES_PCH)
    # What ccache needs to see through precompiled headers.
    set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# A library room. LINKS names all it may use; nothing else is on its link line.
function(orvelles_room NAME)
  cmake_parse_arguments(ARG "" "" "LINKS;PCH" ${ARGN})
  file(GLOB_RECURSE SOURCES CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/*.cpp
       ${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/*.h ${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/*.qrc
       ${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/forms/*.ui)
  add_library(orvelles_${NAME} STATIC ${SOURCES})
  set_target_properties(orvelles_${NAME} PROPERTIES LINKER_LANGUAGE CXX
                        AUTOUIC_SEARCH_PATHS ${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/forms)
  target_include_directories(orvelles_${NAME} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(orvelles_${NAME} PUBLIC ${ARG_LINKS})
  if(ORVELLES_PCH)
    target_precompile_headers(orvelles_${NAME} PRIVATE ${ARG_PCH})
  endif()
endfunction()
