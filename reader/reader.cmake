# The way back from an INV file: the library, and the program quillinv. Where CLI11 or nlohmann-json is missing, neither is
# built, and the agent all the same.
find_package(CLI11 CONFIG QUIET)
find_package(nlohmann_json CONFIG QUIET)

if(TARGET CLI11::CLI11 AND TARGET nlohmann_json::nlohmann_json)
  # Style and script of the pages, in one source.
  set(page_source ${PROJECT_BINARY_DIR}/page.cpp)
  set(page_folder ${PROJECT_SOURCE_DIR}/reader/page)
  add_custom_command(
    OUTPUT ${page_source}
    COMMAND ${CMAKE_COMMAND} -D FOLDER=${page_folder} -D OUT=${page_source} -P ${page_folder}/embed.cmake
    DEPENDS ${page_folder}/embed.cmake ${page_folder}/page.html ${page_folder}/page.css ${page_folder}/page.js)

  file(GLOB reader_sources CONFIGURE_DEPENDS reader/*.cpp)
  list(FILTER reader_sources EXCLUDE REGEX "reader/quillinv\\.cpp$")
  add_library(reader STATIC ${reader_sources})
  target_sources(reader PRIVATE ${page_source})
  target_link_libraries(reader PUBLIC zxml PRIVATE ZLIB::ZLIB nlohmann_json::nlohmann_json)

  add_executable(quillinv reader/quillinv.cpp)
  target_link_libraries(quillinv PRIVATE reader CLI11::CLI11)

  # `cmake --build FOLDER --target reference` writes the documents that are made from the table of the records' fields.
  set(reference_commands COMMAND quillinv schema reference > ${PROJECT_SOURCE_DIR}/docs/records.md
                         COMMAND quillinv schema json > ${PROJECT_SOURCE_DIR}/schema/record.schema.json)
  foreach(engine duckdb spark clickhouse trino)
    list(APPEND reference_commands COMMAND quillinv schema ${engine} > ${PROJECT_SOURCE_DIR}/schema/record.${engine}.sql)
  endforeach()
  add_custom_target(reference ${reference_commands} VERBATIM)
else()
  # On standard error, so that it is seen where the rest of what CMake says is not.
  message(NOTICE "quillinv, the reader, is left out without CLI11 and nlohmann-json. To get them: "
                 "apt-get install libcli11-dev nlohmann-json3-dev, or brew install cli11 nlohmann-json")
endif()
