# Redirects the queries of trace sites to the tests, which count them.
target_link_options(${room_target} PRIVATE -Wl,--wrap=_ZN7tvxcore5debug12TraceEnabledEPKhlb)
