# System and network information readers: identification, processor, interfaces,
# reachability, carrier. Core only, plus D-Bus for the modem and Network for the
# external-address request.
set(KOVAR_EXTERNAL_IP_URL "" CACHE STRING
    "Plain-HTTP endpoint whose body is the caller's public address; empty sends no request")

add_library(kovar_sysinfo STATIC
    ${CMAKE_CURRENT_LIST_DIR}/InfoDictionary.cpp ${CMAKE_CURRENT_LIST_DIR}/InfoDictionary.h
    ${CMAKE_CURRENT_LIST_DIR}/UnitFormatter.cpp ${CMAKE_CURRENT_LIST_DIR}/UnitFormatter.h
    ${CMAKE_CURRENT_LIST_DIR}/SysfsText.cpp ${CMAKE_CURRENT_LIST_DIR}/SysfsText.h
    ${CMAKE_CURRENT_LIST_DIR}/DeviceIdentity.cpp ${CMAKE_CURRENT_LIST_DIR}/DeviceIdentity.h
    ${CMAKE_CURRENT_LIST_DIR}/SystemInfoReader.cpp ${CMAKE_CURRENT_LIST_DIR}/SystemInfoReader.h
    ${CMAKE_CURRENT_LIST_DIR}/CarrierInfo.h
    ${CMAKE_CURRENT_LIST_DIR}/MobileCountryCodes.cpp ${CMAKE_CURRENT_LIST_DIR}/MobileCountryCodes.h
    ${CMAKE_CURRENT_LIST_DIR}/ModemManagerCarrier.cpp ${CMAKE_CURRENT_LIST_DIR}/ModemManagerCarrier.h
    ${CMAKE_CURRENT_LIST_DIR}/RouteLookup.cpp ${CMAKE_CURRENT_LIST_DIR}/RouteLookup.h
    ${CMAKE_CURRENT_LIST_DIR}/NetworkInfoReader.cpp ${CMAKE_CURRENT_LIST_DIR}/NetworkInfoReader.h
)
target_include_directories(kovar_sysinfo PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(kovar_sysinfo PUBLIC Qt6::Core Qt6::DBus Qt6::Network)
target_compile_definitions(kovar_sysinfo PRIVATE KOVAR_EXTERNAL_IP_URL="${KOVAR_EXTERNAL_IP_URL}")
kovar_warnings(kovar_sysinfo)
