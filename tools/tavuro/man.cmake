# Writes the tavuro manual page with help2man from the program's own help
# texts: the overview from --help, one section per command from
# "tavuro help COMMAND".
#   cmake -DTAVURO=program -DHELP2MAN=help2man -DOUTPUT=tavuro.1 -P man.cmake
set(include_text "[COMMANDS]\n")
foreach(command demo config "config show" "config check" "config set" jwt header error date json)
  string(REPLACE " " ";" words "${command}")
  execute_process(COMMAND "${TAVURO}" help ${words}
    OUTPUT_VARIABLE help RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "tavuro help ${command} failed (${status})")
  endif()
  # Text as roff: backslashes escaped, no line taken for a request.
  string(REPLACE "\\" "\\e" help "${help}")
  string(REGEX REPLACE "(^|\n)([.'])" "\\1\\\\&\\2" help "${help}")
  string(APPEND include_text ".SS \"tavuro ${command}\"\n.nf\n${help}.fi\n")
endforeach()
file(WRITE "${OUTPUT}.h2m" "${include_text}")
execute_process(COMMAND "${HELP2MAN}" --no-info --section=1
    "--name=look into what TavuroCommon does with a host's configuration, tokens and answers"
    "--include=${OUTPUT}.h2m" "--output=${OUTPUT}" "${TAVURO}"
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "help2man failed (${status})")
endif()
