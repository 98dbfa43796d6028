# Run by an installation, after the documents were copied: names the folder that they were installed
# to, and makes links lead where their targets have gone. A link to a file of the source alone
# becomes its text.
#
# CMAKE_INSTALL_PREFIX, and DESTDIR in the environment, as CMake sets them; documentsFolder and
# manualFolder, below the prefix or absolute.
cmake_path(ABSOLUTE_PATH documentsFolder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)
cmake_path(ABSOLUTE_PATH manualFolder BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE)

function(mend_links page text_name)
  set(text "${${text_name}}")
  cmake_path(GET page PARENT_PATH folder)
  string(REGEX MATCHALL "!?\\[[^]]*\\]\\([^)]*\\)" links "${text}")
  foreach(link IN LISTS links)
    string(REGEX MATCH "^(!?)\\[([^]]*)\\]\\(([^)#]*)([^)]*)\\)$" whole "${link}")
    set(picture "${CMAKE_MATCH_1}")
    set(words "${CMAKE_MATCH_2}")
    set(target "${CMAKE_MATCH_3}")
    set(heading "${CMAKE_MATCH_4}")
    if(target MATCHES "^[a-z]+:" OR EXISTS "${folder}/${target}")
      continue()
    endif()
    string(REGEX REPLACE "^docs/" "" moved "${target}")
    if(EXISTS "${folder}/${moved}")
      set(mended "${picture}[${words}](${moved}${heading})")
    else()
      set(mended "${words}")
    endif()
    string(REPLACE "${link}" "${mended}" text "${text}")
  endforeach()
  set(${text_name} "${text}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE pages "$ENV{DESTDIR}${documentsFolder}/*.md")
foreach(page IN LISTS pages ITEMS "$ENV{DESTDIR}${manualFolder}/gravlin.1")
  file(READ "${page}" text)
  string(REPLACE "<prefix>/share/doc/gravlin" "${documentsFolder}" text "${text}")
  if(page MATCHES "\\.md$")
    mend_links("${page}" text)
  endif()
  file(WRITE "${page}" "${text}")
endforeach()
