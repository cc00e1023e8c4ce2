# The layers of src/, from the bottom, and the folders of src/ each may
# include: its own and those of the layers below it. Both backends build the
# system with these include roots, so an include that runs upward or sideways
# does not compile (scripts/check_layers.sh also catches the spellings a
# compiler would still resolve, such as paths relative to the including file).
set(QUENBY_LAYER_FOLDERS_base base)
set(QUENBY_LAYER_FOLDERS_facades base rt sys ui)
set(QUENBY_LAYER_FOLDERS_core ${QUENBY_LAYER_FOLDERS_facades} core)
set(QUENBY_LAYER_FOLDERS_host ${QUENBY_LAYER_FOLDERS_facades} host)
set(QUENBY_LAYER_FOLDERS_hiding ${QUENBY_LAYER_FOLDERS_facades} core host hiding)
set(QUENBY_LAYER_FOLDERS_triggers ${QUENBY_LAYER_FOLDERS_hiding} triggers)
set(QUENBY_LAYER_FOLDERS_notify ${QUENBY_LAYER_FOLDERS_hiding} notify)
set(QUENBY_LAYER_FOLDERS_panel ${QUENBY_LAYER_FOLDERS_hiding} triggers notify panel)
set(QUENBY_LAYER_FOLDERS_startup ${QUENBY_LAYER_FOLDERS_panel} startup)

set(QUENBY_SRC_DIR ${CMAKE_CURRENT_LIST_DIR}/../src)
cmake_path(NORMAL_PATH QUENBY_SRC_DIR)

# Sets OUT to the layer's include root: a folder in the build tree holding a
# link to each folder of src/ the layer may include, and nothing else.
function(quenby_layer_root layer out)
  if(NOT DEFINED QUENBY_LAYER_FOLDERS_${layer})
    message(FATAL_ERROR "no layer named ${layer}")
  endif()
  set(root ${CMAKE_BINARY_DIR}/layers/${layer})
  get_property(done GLOBAL PROPERTY QUENBY_LAYER_ROOT_${layer})
  if(NOT done)
    # Made afresh at each configure, so a folder taken off the list goes too.
    file(REMOVE_RECURSE ${root})
    file(MAKE_DIRECTORY ${root})
    foreach(folder IN LISTS QUENBY_LAYER_FOLDERS_${layer})
      file(CREATE_LINK ${QUENBY_SRC_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    endforeach()
    set_property(GLOBAL PROPERTY QUENBY_LAYER_ROOT_${layer} TRUE)
  endif()
  set(${out} ${root} PARENT_SCOPE)
endfunction()

# The layer a folder of src/ belongs to (the facades share one).
function(quenby_layer_of_folder folder out)
  if(folder MATCHES "^(rt|sys|ui)$")
    set(${out} facades PARENT_SCOPE)
  elseif(DEFINED QUENBY_LAYER_FOLDERS_${folder})
    set(${out} ${folder} PARENT_SCOPE)
  else()
    message(FATAL_ERROR "src/${folder} is in no layer (cmake/layers.cmake)")
  endif()
endfunction()

# Compiles TARGET with the include root of LAYER and nothing else of src/.
function(quenby_layer_target target layer)
  quenby_layer_root(${layer} root)
  target_include_directories(${target} PRIVATE ${root})
endfunction()
