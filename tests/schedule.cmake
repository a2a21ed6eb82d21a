set(Boost_USE_STATIC_LIBS ON)
find_package(Boost REQUIRED COMPONENTS context)
add_executable(schedule_test schedule_platform.cpp schedule_test.cpp)
target_link_libraries(schedule_test PRIVATE
    brevold_warnings brevold android_platform Boost::context ${CMAKE_DL_LIBS})
target_compile_options(schedule_test PRIVATE -O2)
set_target_properties(schedule_test PROPERTIES
    ENABLE_EXPORTS ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
add_test(NAME schedule COMMAND schedule_test)

# A mutated source may lack the code that a fault replaces.
if(CMAKE_CXX_FLAGS MATCHES "mutation/switch.h")
    return()
endif()

# The same program finds each fault that is planted in a copy of the library.
set(source ${CMAKE_SOURCE_DIR}/brevold/scaling.cpp)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
function(add_fault name violation correct_code faulty_code)
    file(READ ${source} text)
    string(REPLACE "${correct_code}" "${faulty_code}" faulty_text "${text}")
    if(faulty_text STREQUAL text)
        message(FATAL_ERROR "${source} does not contain the code of the fault ${name}: ${correct_code}")
    endif()
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/faults/${name})
    file(CONFIGURE OUTPUT ${folder}/scaling.cpp CONTENT "${faulty_text}" @ONLY)
    add_library(fault_${name} SHARED ${folder}/scaling.cpp
        $<FILTER:$<TARGET_OBJECTS:brevold_objects>,EXCLUDE,scaling>)
    target_compile_options(fault_${name} PRIVATE -O2 -fvisibility=hidden)
    target_link_libraries(fault_${name} PRIVATE android_platform brevold_profile)
    set_target_properties(fault_${name} PROPERTIES
        OUTPUT_NAME brevold LIBRARY_OUTPUT_DIRECTORY ${folder})
    add_test(NAME schedule_finds_${name} COMMAND schedule_test)
    set_tests_properties(schedule_finds_${name} PROPERTIES
        ENVIRONMENT LD_PRELOAD=${folder}/libbrevold.so PASS_REGULAR_EXPRESSION "${violation}")
endfunction()

add_fault(lock_order "gLock is locked after a worker's lock"
    "if (!mBoostPending) return;"
    "Mutex::Autolock second(gLock);
    if (!mBoostPending) return;")
add_fault(no_signal "a waiting worker is not signalled"
    "mBoostPending = false;
    mCondition.signal();"
    "mBoostPending = false;")
add_fault(cleared_before_lock "a boost is not released|a hint that is not due is sent"
    "Mutex::Autolock lock(mLock);
    if (!mBoostPending) return;
    mBoostPending = false;"
    "if (!mBoostPending) return;
    mBoostPending = false;
    Mutex::Autolock lock(mLock);")
set(hint "mPerfHint(kScalingHint, nullptr, mDuration, static_cast<int>(typeWord()));")
add_fault(hint_without_lock "a request is not sent"
    "${hint}"
    "mBoosted = true;
    mLock.unlock();
    ${hint}
    mLock.lock();")
