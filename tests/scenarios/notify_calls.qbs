# Calls of a secret follow the two call switches only, hidden or revealed.
# In the background a blocked call is reported to CallKit and ended at once
# and again 0.15 s later; in the app it is only logged. An unanswered call
# leaves a missed-call message after 30 s, gated the same way.
friend alice nick=Alice
friend bob nick=Bob
secret bob
setting voipVoiceNotify true
setting voipVideoNotify false
launch

# Alice is never touched.
call video alice
expect ringing alice
expect banner alice
expect vibration alice

# Bob's video call while the app is open: logged, still ringing.
call video bob
expect log "[QB] block CallKit UI from bob video=1"
expect ringing bob
expect no-banner bob
expect no-log "[QB] CallKit requestEndCallTrans"
wait 30
expect no-ringing bob
expect no-banner bob

# In the background the same call is ended twice.
background
call video bob
expect log "[QB] block PK CallKit UI from bob"
expect no-ringing bob
wait 0.2
show log

# His voice calls may ring: the voice switch is on.
call voice bob
expect ringing bob
wait 30
expect no-ringing bob
show notices
