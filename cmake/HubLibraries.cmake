# Sets HUB_LIBRARIES_FOUND: whether what qelm-hub and qelmctl are built of is here, and
# HUB_LIBRARIES_MISSING: what of it is not. Another architecture's are not looked for: the
# pkg-config here answers for this machine.
find_package(Boost 1.81 QUIET)
find_package(OpenSSL QUIET)
find_package(PkgConfig QUIET)
find_package(fmt QUIET)
find_package(tomlplusplus QUIET)
find_library(EDIT_LIBRARY edit)
find_path(EDIT_INCLUDE_DIR editline/readline.h)
if(PkgConfig_FOUND)
  pkg_check_modules(SQLITE QUIET IMPORTED_TARGET sqlite3)
  pkg_check_modules(MOSQUITTO QUIET IMPORTED_TARGET libmosquitto)
  pkg_check_modules(SODIUM QUIET IMPORTED_TARGET libsodium)
  pkg_check_modules(SYSTEMD QUIET IMPORTED_TARGET libsystemd)
endif()

set(HUB_LIBRARIES_MISSING "")
foreach(row
    "Boost_FOUND libboost1.81-dev" "OPENSSL_FOUND libssl-dev" "PkgConfig_FOUND pkgconf"
    "SQLITE_FOUND libsqlite3-dev" "MOSQUITTO_FOUND libmosquitto-dev" "SODIUM_FOUND libsodium-dev" "SYSTEMD_FOUND libsystemd-dev"
    "fmt_FOUND libfmt-dev" "tomlplusplus_FOUND libtomlplusplus-dev" "EDIT_LIBRARY libedit-dev"
    "CLI11_INCLUDE_DIR libcli11-dev")
  string(REPLACE " " ";" row "${row}")
  list(GET row 0 found)
  list(GET row 1 package)
  if(NOT ${found})
    list(APPEND HUB_LIBRARIES_MISSING ${package})
  endif()
endforeach()
set(HUB_LIBRARIES_FOUND ON)
if(HUB_LIBRARIES_MISSING OR CMAKE_CROSSCOMPILING)
  set(HUB_LIBRARIES_FOUND OFF)
endif()
