# cmake -DVERSION=... -DFILE=... -P version.cmake: writes by what versions the package can be asked for. A newer library serves
# hosts of every older version with the same first number, in either width.
include(CMakePackageConfigHelpers)
write_basic_package_version_file("${FILE}" VERSION ${VERSION} COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
