# The questions that trace sites ask are counted on their way: the calls of this function go to the tests.
target_link_options(${room_target} PRIVATE -Wl,--wrap=_ZN7tvxcore5debug12TraceEnabledEPKhlb)
