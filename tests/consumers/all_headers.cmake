# Makes all_headers.h, which includes every header that ZelMain offers.
get_target_property(header_set ZelMain::ZelMain HEADER_SET)
get_target_property(header_folder ZelMain::ZelMain HEADER_DIRS)
set(all_headers "")
foreach(header IN LISTS header_set)
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY "${header_folder}")
    string(APPEND all_headers "#include \"${header}\"\n")
endforeach()
file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/all_headers.h" "${all_headers}")
