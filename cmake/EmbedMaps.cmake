# Writes a C++ source that holds the texts of map files. Call: cmake -D FOLDER=... -D "FILES=a.json;b/c.json" -D OUTPUT=...
# -P EmbedMaps.cmake. A file is known by its path beneath the folder; one without a folder also without its ending.
cmake_minimum_required(VERSION 3.25)

set(entries "")
foreach(file IN LISTS FILES)
  file(READ ${FOLDER}/${file} text)
  if(text MATCHES "\\)map\"")
    message(FATAL_ERROR "${file}: holds the end of the literal that it becomes")
  endif()
  string(APPEND entries "    {\"${file}\", R\"map(${text})map\"},\n")
endforeach()
file(WRITE ${OUTPUT}.new "// Written by cmake/EmbedMaps.cmake.\n"
  "#include \"ov_sys/maps/BuiltIn.h\"\n\n"
  "namespace Orvane::Maps {\n\n"
  "const std::vector<BuiltInFile> kBuiltInFiles = {\n${entries}};\n\n"
  "} // namespace Orvane::Maps\n")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
