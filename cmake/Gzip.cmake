# cmake -DGZIP=... -DINPUT=... -DOUTPUT=... -P Gzip.cmake: as gzip's output has no option of its own.
execute_process(COMMAND "${GZIP}" -9 -n -c "${INPUT}" OUTPUT_FILE "${OUTPUT}" COMMAND_ERROR_IS_FATAL ANY)
