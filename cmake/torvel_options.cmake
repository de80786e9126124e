# torvel_options(TARGET)
#
# The language, the warnings and the visibility every target of the project is compiled with.
function(torvel_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  # Contraction into fused operations would make the two platforms compute different last bits.
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Werror -ffp-contract=off)
  if(WIN32)
    target_compile_definitions(${target} PRIVATE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  endif()
  get_target_property(type ${target} TYPE)
  if(type MATCHES "^(SHARED|MODULE)_LIBRARY$" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT WIN32)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()

# torvel_standard_headers(TARGET)
#
# What nearly every source of the large rooms includes of the standard library and Boost, compiled once for TARGET.
# Headers of the project are not among them: a change of one would compile everything again. Whether a source includes what
# it uses is seen by clang-tidy, which takes none of these.
function(torvel_standard_headers target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <array> <cmath> <cstdint> <functional> <map> <memory> <optional> <span> <stdexcept> <string>
    <string_view> <unordered_map> <utility> <vector> <boost/format.hpp>)
  if(WIN32)
    # From a compiled header GCC 12 takes the system's own copying of empty wide texts for a fault.
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overread)
  endif()
endfunction()
