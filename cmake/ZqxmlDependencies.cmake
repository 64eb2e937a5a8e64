# What the library stands on. Public headers name Xerces-C alone, so ZqXMLMsgsBaseConfig.cmake.in and
# zqxmlmsgsbase.pc.in ask their users for that one.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(XercesC 3.2 REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc)
find_package(OpenSSL 3 REQUIRED COMPONENTS Crypto)
find_package(LibLZMA REQUIRED)
find_package(spdlog 1.10 REQUIRED)
pkg_check_modules(inih REQUIRED IMPORTED_TARGET GLOBAL inih)
