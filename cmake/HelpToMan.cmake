# Writes a man page from a program's --help: the template's @HELP@ becomes
# the help text in roff, so the page lists exactly the options the program
# takes. Run as a build step:
#   cmake -DPROGRAM=path -DTEMPLATE=x.1.in -DOUTPUT=x.1 -DVERSION=v -P HelpToMan.cmake
#
# The help's shape: "usage: ..." lines (continued by lines indented 7
# spaces), options indented two spaces with their text after two or more
# spaces (continued by deeper indented lines), and plain text.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${CMAKE_COMMAND} -E env ASAN_OPTIONS=detect_leaks=0 ${PROGRAM} --help
                OUTPUT_VARIABLE help RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR help STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} --help failed: ${status}")
endif()

# Roff's special characters: the backslash, the hyphen of options, and a
# dot or quote at the start of a line.
function(roff_escape text out)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  string(REGEX REPLACE "^([.'])" "\\\\&\\1" text "${text}")
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# Line by line by hand: a CMake list would split at the help's semicolons
# and not at all inside brackets.
set(roff "")
set(state none)
string(APPEND help "\n")
while(NOT help STREQUAL "")
  string(FIND "${help}" "\n" end)
  string(SUBSTRING "${help}" 0 ${end} line)
  math(EXPR next "${end} + 1")
  string(SUBSTRING "${help}" ${next} -1 help)
  if(line STREQUAL "")
    set(state none)
  elseif(line MATCHES "^usage: (.*)$")
    roff_escape("${CMAKE_MATCH_1}" text)
    string(APPEND roff ".PP\n.B ${text}\n")
    set(state usage)
  elseif(state STREQUAL "usage" AND line MATCHES "^       ([^ ].*)$")
    roff_escape("${CMAKE_MATCH_1}" text)
    string(APPEND roff ".br\n.B ${text}\n")
  elseif(line MATCHES "^  (-[^ ]+( [^ -][^ ]*)*)(  +(.*))?$")
    roff_escape("${CMAKE_MATCH_1}" tag)
    string(APPEND roff ".TP\n.B ${tag}\n")
    if(NOT "${CMAKE_MATCH_4}" STREQUAL "")
      roff_escape("${CMAKE_MATCH_4}" text)
      string(APPEND roff "${text}\n")
    endif()
    set(state option)
  elseif(line MATCHES "^    +([^ ].*)$")
    roff_escape("${CMAKE_MATCH_1}" text)
    string(APPEND roff "${text}\n")
  else()
    string(STRIP "${line}" stripped)
    roff_escape("${stripped}" text)
    if(NOT state STREQUAL "text")
      string(APPEND roff ".PP\n")
    endif()
    string(APPEND roff "${text}\n")
    set(state text)
  endif()
endwhile()

file(READ ${TEMPLATE} page)
string(REPLACE "@VERSION@" "${VERSION}" page "${page}")
string(REPLACE "@HELP@\n" "${roff}" page "${page}")
file(WRITE ${OUTPUT} "${page}")
