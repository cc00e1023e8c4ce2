# A contact made secret while the app is suspended, and the app then ended:
# the clean-up of the share sheet's suggestions it asked for had already
# reached the system, so the next start finds nothing left to clean.
friend alice nick=Alice
friend carol nick=Carol
launch
send carol "hi"
send alice "hey"
expect suggestions alice carol
background
wait 10
expect app suspended
secret carol
expect suggestions alice
quit
launch
expect suggestions alice
