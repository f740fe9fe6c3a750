# The device binary: built when libubox, libubus and libuci are found.
if(LYND_OPENWRT STREQUAL "OFF")
  return()
endif()
message(STATUS "OpenWrt adapters: not yet available")
