# VixaVideoFX::headers: what a host compiles against. There is nothing to link.
if(NOT TARGET VixaVideoFX::headers)
    add_library(VixaVideoFX::headers INTERFACE IMPORTED)
    get_filename_component(VixaVideoFX_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
    set_target_properties(VixaVideoFX::headers PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${VixaVideoFX_ROOT}/include")
endif()
