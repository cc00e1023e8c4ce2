# A secret's call is ended at once and once more 0.15 s later; a call from
# someone else in between is never touched: the host's end takes no call, so
# the second end would hang up the newer one and is skipped.
friend alice nick=Alice
friend bob nick=Bob
secret bob
launch
background
call voice bob
wait 0.1
call voice alice
wait 0.1
expect ringing alice
expect no-ringing bob
expect log "[QB] CallKit second end skipped: a newer call"
quit
launch
background
call voice bob
call video alice
wait 0.5
expect ringing alice
expect no-ringing bob
