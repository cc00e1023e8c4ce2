# The layers of platform/sim, from the bottom, and the folders of it each may
# include ("sim/<folder>/…"): its own and those listed. Every layer may also
# include src/base and the facade headers src/rt, src/sys and src/ui, and
# nothing else of src/. "process" is the two files at the top of
# platform/sim: what one process holds (its runtime, queue, notification
# centre and device) and the current one. The simulated frameworks and the
# facades' implementations sit above it and reach the current process; the
# process starts the frameworks through registerFrameworks, which it declares
# and they define. Each layer compiles with an include root holding only what
# it may include, so an upward or sideways include does not compile
# (scripts/check_sim_layers.sh reads this table and catches the spellings a
# compiler would still resolve).
set(QUENBY_SIM_LAYER_codec codec)
set(QUENBY_SIM_LAYER_device codec device)
set(QUENBY_SIM_LAYER_events events)
set(QUENBY_SIM_LAYER_runtime runtime)
set(QUENBY_SIM_LAYER_process codec device events runtime process)
set(QUENBY_SIM_LAYER_frameworks ${QUENBY_SIM_LAYER_process} frameworks)
set(QUENBY_SIM_LAYER_facades ${QUENBY_SIM_LAYER_frameworks} rt sys ui)
set(QUENBY_SIM_LAYER_hostapp ${QUENBY_SIM_LAYER_frameworks} hostapp)
set(QUENBY_SIM_LAYER_springboard ${QUENBY_SIM_LAYER_frameworks} springboard)
set(QUENBY_SIM_LAYER_picture ${QUENBY_SIM_LAYER_frameworks} picture)

set(QUENBY_SIM_DIR ${CMAKE_CURRENT_LIST_DIR}/../platform/sim)
cmake_path(NORMAL_PATH QUENBY_SIM_DIR)
set(QUENBY_SIM_SRC_DIR ${CMAKE_CURRENT_LIST_DIR}/../src)
cmake_path(NORMAL_PATH QUENBY_SIM_SRC_DIR)

# Compiles TARGET with the include root of the simulation's LAYER: a folder
# in the build tree with links to src/base, the facade headers and the
# folders of platform/sim the layer may include, under sim/.
function(quenby_sim_layer_target target layer)
  if(NOT DEFINED QUENBY_SIM_LAYER_${layer})
    message(FATAL_ERROR "no layer of platform/sim named ${layer}")
  endif()
  set(root ${CMAKE_BINARY_DIR}/sim_layers/${layer})
  get_property(done GLOBAL PROPERTY QUENBY_SIM_LAYER_ROOT_${layer})
  if(NOT done)
    file(REMOVE_RECURSE ${root})
    file(MAKE_DIRECTORY ${root}/sim)
    foreach(folder base rt sys ui)
      file(CREATE_LINK ${QUENBY_SIM_SRC_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    endforeach()
    foreach(folder IN LISTS QUENBY_SIM_LAYER_${layer})
      if(folder STREQUAL "process")
        file(CREATE_LINK ${QUENBY_SIM_DIR}/process.hpp ${root}/sim/process.hpp SYMBOLIC)
      else()
        file(CREATE_LINK ${QUENBY_SIM_DIR}/${folder} ${root}/sim/${folder} SYMBOLIC)
      endif()
    endforeach()
    set_property(GLOBAL PROPERTY QUENBY_SIM_LAYER_ROOT_${layer} TRUE)
  endif()
  target_include_directories(${target} PRIVATE ${root})
endfunction()
