# Flags of every target: warnings are errors, release builds are hardened, sanitizers end the run at the first finding.
add_compile_options(-Wall -Wextra -Wshadow -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # clang counts changes of sign into -Wconversion, g++ does not in C++. g++ is the reference.
    add_compile_options(-Wno-sign-conversion)
endif()

# Calls between our own exported members need not go through the symbol table; the host overrides none of them.
add_compile_options(-fno-semantic-interposition)

if(VARNPDF_SANITIZE)
    add_compile_options(-fsanitize=${VARNPDF_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${VARNPDF_SANITIZE})
else()
    add_compile_options(-fstack-protector-strong -fcf-protection)
    # FORTIFY needs the optimizer; some compilers define the macro themselves, hence -U.
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE>"
                        "$<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=2>")
    add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()

# Everywhere but in what is shipped, the standard library checks indexes and iterators.
add_compile_options("$<$<CONFIG:Debug>:-D_GLIBCXX_ASSERTIONS>")
