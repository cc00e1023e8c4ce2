# A secret's missed-call message that reaches a sleeping app's lock screen
# follows the call switches, as it does while the app runs: with both off it
# is dropped in every notify mode; a switch that is on lets its kind through.
friend bob nick=Bob
friend alice nick=Alice
secret bob
setting secretNotifyMode 2
launch
background
wait 10
expect app suspended
message bob "[未接语音通话]"
expect no-banner bob
message alice "[未接语音通话]"
expect banner alice
message bob hello
expect banner bob
expect lockscreen bob alice
foreground
setting voipVoiceNotify true
background
wait 10
message bob "[未接语音通话]"
expect banner bob
message bob "[未接视频通话]"
expect no-banner bob
expect lockscreen bob bob alice
