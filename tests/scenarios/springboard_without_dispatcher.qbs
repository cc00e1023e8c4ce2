# A SpringBoard whose notification entry point is not there: the guard is not
# installed, SpringBoard presents as it always does, and one line says so.
friend bob nick=Bob
secret bob
host lacks NCNotificationDispatcher postNotificationWithRequest:
launch
background
wait 10
message bob "shown"
expect banner bob
expect sound bob
expect no-log " ex: "
