# Flags every target of the project gets: warnings as errors, and sanitizers when asked for.

add_library(ofp_compile INTERFACE)
target_compile_options(ofp_compile INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wcast-align -Wundef
  -Wno-missing-field-initializers
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual>
  $<$<CXX_COMPILER_ID:Clang>:-Waddress-of-packed-member>)
target_include_directories(ofp_compile INTERFACE ${PROJECT_SOURCE_DIR}/include)

if(OFP_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # g++ takes an empty std::optional for an uninitialised one once the sanitizers instrument it.
  target_compile_options(ofp_compile INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:$<$<COMPILE_LANGUAGE:CXX>:-Wno-maybe-uninitialized>>)
endif()
