# Copies FRA to TIL unless TIL exists: a rebuild never throws away imported measurements.
if(NOT EXISTS "${TIL}")
  file(COPY_FILE "${FRA}" "${TIL}")
endif()
