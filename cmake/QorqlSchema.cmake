# Writes the C++ source that holds the schema of the live classes: the .mof files of FOLDER, one
# after the other without their opening comments, once whole and once without the descriptions.
# Classes that refer to others come after those. Run as a script with FOLDER and OUTPUT set.
# SPDX-License-Identifier: Apache-2.0
file(GLOB all_files ${FOLDER}/*.mof)
list(SORT all_files)
foreach(path ${all_files})
  file(READ ${path} text)
  if(text MATCHES " REF ")
    list(APPEND referring ${path})
  else()
    list(APPEND files ${path})
  endif()
endforeach()
list(APPEND files ${referring})

file(WRITE ${OUTPUT}.new "// The schema of the live classes, made from Cimom/Providers/Schema.\n"
                         "#include \"Cimom/Providers/LinuxProviders.h\"\n")

function(write_text operation has_descriptions)
  file(APPEND ${OUTPUT}.new "\nconst char* ${operation}() {\n  return\n")
  foreach(path ${files})
    file(READ ${path} text)
    string(REGEX REPLACE "^//[^\n]*\n" "" text "${text}")
    if(NOT has_descriptions)
      string(REGEX REPLACE "[[]Description[(]\"[^\"]*\"[)][]][ \n]*" "" text "${text}")
      string(REGEX REPLACE ", *Description[(]\"[^\"]*\"[)]" "" text "${text}")
    endif()
    file(APPEND ${OUTPUT}.new "R\"mof(${text})mof\"\n")
  endforeach()
  file(APPEND ${OUTPUT}.new ";\n}\n")
endfunction()

write_text(linuxSchemaMof TRUE)
write_text(linuxSchemaMofWithoutDescriptions FALSE)
file(RENAME ${OUTPUT}.new ${OUTPUT})
