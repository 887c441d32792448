# What every target of the project is compiled with, and where the build puts its outputs.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -fno-exceptions -fvisibility=hidden)
add_compile_definitions(QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS
                        QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050900)
add_link_options(-Wl,--as-needed)

# What is built with a newer Qt or compiler runs with an older one: no mark of the Qt version that must be there, and the
# form of operator delete that every C++ runtime has.
add_compile_definitions(QT_NO_VERSION_TAGGING)
add_compile_options(-fno-sized-deallocation)

# Hardening: checked stack and library calls, tables that are read-only before main() is, code at a random address.
add_compile_options(-fstack-protector-strong)
add_link_options(-Wl,-z,relro -Wl,-z,now "$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>")
if(NOT MVSIGNPAD_SANITIZE) # which checks the same calls itself
    add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
if(NOT MVSIGNPAD_SANITIZE) # whose runtime a library finds in the program that loads it
    add_link_options(-Wl,--no-undefined)
endif()

# One source tree is one include root: #include "device/SignObjManager.h".
include_directories("${CMAKE_SOURCE_DIR}")

if(MVSIGNPAD_SANITIZE)
    add_compile_options("-fsanitize=${MVSIGNPAD_SANITIZE}" -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options("-fsanitize=${MVSIGNPAD_SANITIZE}")
endif()
