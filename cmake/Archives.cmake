# Programs are linked to archives where these spare a start of the program time. A target with the
# property PQ_SHARED takes the system's shared libraries instead, which a distribution keeps up to
# date, and whose licence may ask that they can be exchanged.
#
#   pq_link_archive(TARGET ARCHIVE LIBRARY)
function(pq_link_archive target archive library)
  target_link_libraries(${target} INTERFACE
    $<IF:$<BOOL:$<TARGET_PROPERTY:PQ_SHARED>>,${library},${archive}>)
endfunction()
