# How the sources of the libraries are compiled for the package: for size (cmake/wasm.cmake), but for what is named here.

# The sources that are named by folders and what is in them: "FOLDER/ NAME NAME ...".
function(zbr_web_sources result root)
  foreach(word ${ARGN})
    if(word MATCHES "/$")
      set(folder ${root}/${word})
    else()
      list(APPEND sources ${folder}${word}.cpp)
    endif()
  endforeach()
  set(${result} ${sources} PARENT_SCOPE)
endfunction()

# Adds options to those with which named sources of a library are compiled.
function(zbr_web_option target options)
  get_target_property(root ${target} SOURCE_DIR)
  zbr_web_sources(sources ${root} ${ARGN})
  set_property(SOURCE ${sources} TARGET_DIRECTORY ${target} APPEND PROPERTY COMPILE_OPTIONS ${options})
  if("-fignore-exceptions" IN_LIST options)  # a file that gets a reason of its own to throw has to be taken from the list
    foreach(source ${sources})
      file(STRINGS ${source} throws REGEX "throw [A-Z]|Failure|FailAt|Require\\(")
      if(throws)
        message(FATAL_ERROR "${source} throws, so it needs what cleans up")
      endif()
    endforeach()
  endif()
endfunction()

# What unions and views spend their time in. Sorting takes a sixth of all code unless compat/algorithm does it; where it counts the
# standard library's is kept. The search for crossings, which most of a union of large rings consists of, is compiled for speed before
# all and with vectors, which take a quarter less time there.
target_include_directories(zbr_objects BEFORE PRIVATE compat)
set(quick -O2 -DZBR_FAST_SORTS)
zbr_web_option(zbr_objects "${quick}"
  boolean/ corner_rings rectilinear_sweep
  core/ intersect plane point point3
  hiddenline/ classify driver occluder_tree occluders occlusion picking triangle
  mesh/ edge_map)
set(walk region_combine region_input region_walk walk_depths walk_polygons walk_rings walk_search)
zbr_web_option(zbr_objects "-O3;-DZBR_FAST_SORTS;-msimd128;-msse2" boolean/ ${walk} core/ box_tree loops/ edge_index)
zbr_web_option(zbr_drawing "${quick}"
  intersections/ border_winding coaxial convex crossings exact_sign intersections plain_fans sheets slender_tree triangle_trees
  model/ connectivity edge_classes fill_body model patches records scene weld
  silhouettes/ contour smooth_normals smooth_silhouettes visible_runs
  views/ view_lines views
  ./ touched)

# As in libzbr: what throws for lack of memory alone, and calls nothing that throws for another reason, cleans nothing up then.
zbr_web_option(zbr_drawing -fignore-exceptions
  centre_lines/ centres
  contours/ affine carriers chords drawing end_nodes even_rings fillings join meetings names repeats short_ends spline spline_pieces
  curves/ arc_search chain_runs circle_fit common_parts doubled_curves edge_chains find_circles rims roundings seen_circles
  intersections/ border_winding coaxial convex crossings exact_sign intersections plain_fans sheets slender_tree triangle_trees
  model/ connectivity edge_classes fill_body measures named_shells patches records rough_creases rounding scene survey tangent_lines
         tangents triangulate weld
  regions/ bezier frame measures simplify
  sections/ caps common_cuts contours cut_chains cut_scene face_lines faces join_contours simple_ring
  sheets/ centre_lines frame_and_title hatching lettering marked_planes paths section_marks view_names
  silhouettes/ contour smooth_normals smooth_silhouettes visible_runs
  views/ chains crumbs double_lines drawn_segments end_tree outlines specks view_lines
  ./ numbers touched trigonometry units)
zbr_web_option(zbr_formats -fignore-exceptions
  drawings/ geojson_writer wkt_writer
  dxf/ dxf_document dxf_output dxf_tables dxf_writer sheet_dxf
  pictures/ page pdf_page picture plot sheet_ink sheet_json sheet_path sheet_pdf sheet_svg sheets svg_text
  text/ json_text utf8)

# Sections combine a few rings. There what is otherwise compiled for speed has half the code when it is not.
zbr_web_sources(ZBR_STEADY ${PROJECT_SOURCE_DIR} boolean/ ${walk} corner_rings rectilinear_sweep loops/ edge_index)
