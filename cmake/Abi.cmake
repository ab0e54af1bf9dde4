# Injected by scripts/check-abi into a build that is for its debug information alone: what takes half of its time is
# compiled once.
cmake_language(DEFER CALL target_precompile_headers vyr-objects PRIVATE
  <algorithm> <functional> <map> <memory> <mutex> <optional> <string> <unordered_map> <vector> <libxml/tree.h>)
