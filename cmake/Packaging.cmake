# What `cmake --install` puts where, and the Debian package CPack makes of it
# (`cpack -G DEB` in the build folder).
#
#   <prefix>/lib/velora-offline-tool/   the program, velora-pack, tarngui_lite.json, and
#       demo-processor-stand-in/        the stand-in processor (tarn-sim) with its manifest
#   <prefix>/bin/                       links to the program and velora-pack
#   <prefix>/share/applications, metainfo, icons/hicolor/<N>x<N>/apps, doc/velora-offline-tool,
#       man/man1
#
# On Windows everything of the program goes into the install folder itself.
set(VELORA_PACKAGE_NAME "velora-offline-tool")
set(VELORA_APP_ID "org.velora.OfflineTool")
set(VELORA_SCREENSHOT_BASE_URL
    "https://raw.githubusercontent.com/velora-offline-tool/velora-offline-tool/main/docs"
    CACHE STRING "Where the README's screenshots are published, for the AppStream metadata")
set(VELORA_PACKAGING_DIR "${PROJECT_SOURCE_DIR}/packaging")
set(VELORA_STAGING_DIR "${CMAKE_BINARY_DIR}/packaging")

if(WIN32)
    set(VELORA_APP_DIR ".")
else()
    set(VELORA_APP_DIR "lib/${VELORA_PACKAGE_NAME}")
endif()
set(VELORA_DEMO_DIR "demo-processor-stand-in")
set(VELORA_DOC_DIR "share/doc/${VELORA_PACKAGE_NAME}")

# The user guide, also where a program in the build tree finds it (bin/../share/doc/…).
configure_file("${PROJECT_SOURCE_DIR}/docs/user-guide.html"
               "${CMAKE_BINARY_DIR}/${VELORA_DOC_DIR}/user-guide.html" COPYONLY)

# The installed demo bundle: tarn-sim under its own name, in a folder named as a stand-in.
set(TARN_EXE_NAME "tarn-sim${CMAKE_EXECUTABLE_SUFFIX}")
configure_file("${PROJECT_SOURCE_DIR}/tools/tarn-sim/demo/processor_manifest.json.in"
               "${VELORA_STAGING_DIR}/processor_manifest.json" @ONLY)
file(WRITE "${VELORA_STAGING_DIR}/tarngui_lite.json"
     "{\n  \"active_variant\": \"lite\",\n  \"variants\": {\n    \"lite\": {\n"
     "      \"display_name\": \"Stand-in processor (tarn-sim, for trying the tool out)\",\n"
     "      \"executable\": \"${VELORA_DEMO_DIR}/${TARN_EXE_NAME}\",\n"
     "      \"work_dir\": \"${VELORA_DEMO_DIR}\"\n    }\n  }\n}\n")
configure_file("${VELORA_PACKAGING_DIR}/${VELORA_APP_ID}.metainfo.xml"
               "${VELORA_STAGING_DIR}/${VELORA_APP_ID}.metainfo.xml" @ONLY)
configure_file("${VELORA_PACKAGING_DIR}/changelog" "${VELORA_STAGING_DIR}/changelog" @ONLY)
execute_process(COMMAND gzip -9 -n -c "${VELORA_STAGING_DIR}/changelog"
                OUTPUT_FILE "${VELORA_STAGING_DIR}/changelog.gz")
foreach(page VeloraOfflineTool velora-pack)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/docs/man/${page}.1")
    execute_process(COMMAND gzip -9 -n -c "${PROJECT_SOURCE_DIR}/docs/man/${page}.1"
                    OUTPUT_FILE "${VELORA_STAGING_DIR}/${page}.1.gz")
endforeach()

install(TARGETS VeloraOfflineTool velora-pack RUNTIME DESTINATION "${VELORA_APP_DIR}")
install(TARGETS tarn-sim RUNTIME DESTINATION "${VELORA_APP_DIR}/${VELORA_DEMO_DIR}")
install(FILES "${VELORA_STAGING_DIR}/processor_manifest.json"
        DESTINATION "${VELORA_APP_DIR}/${VELORA_DEMO_DIR}")
install(FILES "${VELORA_PACKAGING_DIR}/demo-processor-README.txt"
        DESTINATION "${VELORA_APP_DIR}/${VELORA_DEMO_DIR}" RENAME "README.txt")
install(FILES "${VELORA_STAGING_DIR}/tarngui_lite.json" DESTINATION "${VELORA_APP_DIR}")

if(WIN32)
    install(FILES "${PROJECT_SOURCE_DIR}/docs/user-guide.html" DESTINATION "${VELORA_APP_DIR}")
    return()
endif()

foreach(program VeloraOfflineTool velora-pack)
    install(CODE "
        file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
        file(CREATE_LINK \"../${VELORA_APP_DIR}/${program}\"
             \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/${program}\" SYMBOLIC)")
endforeach()
install(FILES "${VELORA_PACKAGING_DIR}/${VELORA_APP_ID}.desktop" DESTINATION share/applications)
install(FILES "${VELORA_STAGING_DIR}/${VELORA_APP_ID}.metainfo.xml" DESTINATION share/metainfo)
foreach(size 16 22 24 32 48 64 128 256)
    install(FILES "${PROJECT_SOURCE_DIR}/resources/branding/icons/${size}x${size}.png"
            DESTINATION "share/icons/hicolor/${size}x${size}/apps" RENAME "${VELORA_APP_ID}.png")
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/docs/user-guide.html" DESTINATION "${VELORA_DOC_DIR}")
install(FILES "${VELORA_STAGING_DIR}/VeloraOfflineTool.1.gz" "${VELORA_STAGING_DIR}/velora-pack.1.gz"
        DESTINATION share/man/man1)
install(FILES "${VELORA_PACKAGING_DIR}/copyright" "${VELORA_STAGING_DIR}/changelog.gz"
        DESTINATION "${VELORA_DOC_DIR}")

set(CPACK_GENERATOR "DEB")
set(CPACK_PACKAGE_NAME "${VELORA_PACKAGE_NAME}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "Velora Offline Tool developers <velora-offline-tool@users.noreply.github.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "prepare the playback package of an e-paper photo frame")
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES TRUE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION "graphics")
set(CPACK_DEBIAN_PACKAGE_PRIORITY "optional")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so the libraries' dependencies do not name them: the window's platform
# plugins and the readers of WebP and TIFF pictures.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, qt6-image-formats-plugins")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
# The synopsis is CPACK_PACKAGE_DESCRIPTION_SUMMARY; this is the extended description, whose
# lines CPack indents (an empty line becomes the paragraph mark " .").
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "The Velora Offline Tool prepares the TF card of a Velora Frame, an
electronic-paper photo frame that plays pictures from the card without a
network. It fits and frames each picture for the panel, runs the frame
maker's processor on it, writes the playback package, and copies it onto
the card with verification. velora-pack does the same from the command line.

A stand-in processor for trying the tool out is included; for a real frame,
install the processor that came with it.")
include(CPack)
