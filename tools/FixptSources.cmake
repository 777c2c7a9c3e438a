# The sources of fixpt apart from main(), shared by the tool and its fuzz
# target.
set(FIXPT_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_batch.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_convert.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_exact.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_fit.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_format.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_info.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_item.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_number.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_options.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_pattern.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_reading.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_request.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_run.cpp
    ${CMAKE_CURRENT_LIST_DIR}/fixpt_single.cpp)
