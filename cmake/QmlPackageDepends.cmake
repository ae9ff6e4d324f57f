# Run by cpack: adds the Debian packages of the QML modules the popover imports to the package's
# dependencies. qmlimportscanner lists every module the QML files import, with the modules those
# import in turn; `dpkg -S` names the package that ships each module's qmldir. Modules without a
# qmldir (QtQml, built into libQt6Qml) come with the libraries dpkg-shlibdeps finds.

execute_process(
  COMMAND ${CPACK_QUELMO_QML_IMPORT_SCANNER} -rootPath ${CPACK_QUELMO_QML_ROOT}
          -importPath ${CPACK_QUELMO_QML_IMPORT_PATH}
  OUTPUT_VARIABLE imports ERROR_QUIET RESULT_VARIABLE scanned)
if(NOT scanned EQUAL 0)
  message(FATAL_ERROR "qmlimportscanner failed on ${CPACK_QUELMO_QML_ROOT}")
endif()

set(qml_packages)
string(JSON count LENGTH "${imports}")
if(count GREATER 0)
  math(EXPR last "${count} - 1")
  foreach(i RANGE ${last})
    string(JSON path ERROR_VARIABLE no_path GET "${imports}" ${i} path)
    if(no_path OR NOT EXISTS "${path}/qmldir")
      continue()
    endif()
    execute_process(COMMAND dpkg-query -S "${path}/qmldir" OUTPUT_VARIABLE owner
                    RESULT_VARIABLE found ERROR_QUIET)
    if(NOT found EQUAL 0)
      string(JSON name GET "${imports}" ${i} name)
      message(FATAL_ERROR "No Debian package ships the QML module ${name} (${path})")
    endif()
    string(REGEX REPLACE "^([^:]+):.*" "\\1" owner "${owner}")
    list(APPEND qml_packages ${owner})
  endforeach()
endif()
list(REMOVE_DUPLICATES qml_packages)
list(SORT qml_packages)
list(JOIN qml_packages ", " qml_depends)
if(qml_depends)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "${CPACK_DEBIAN_PACKAGE_DEPENDS}, ${qml_depends}")
endif()
