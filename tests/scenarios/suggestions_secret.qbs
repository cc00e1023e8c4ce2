# The share sheet and Siri suggest the people of the interactions the app
# donated. A secret is never among them, hidden or revealed: its donations
# never reach the system, and what was donated before it became secret is
# deleted.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
session alice
session bob
session carol
launch
send bob "lunch?"
send alice "hi"
message carol "hey"
expect suggestions carol alice bob

# Made secret: what was donated for bob goes at once.
secret bob
expect suggestions carol alice
send bob "are you there?"
message bob "yes"
expect suggestions carol alice

# Revealed, still never suggested.
shake
type 7351
press 确定
wait 1
expect revealed
send bob "revealed now"
expect suggestions carol alice
send carol "x"
expect suggestions carol alice

# After a cold start too.
quit
launch
send bob "again"
expect suggestions carol alice

# Unsecret: bob is suggested again once he is talked to.
unsecret bob
send bob "back"
expect suggestions bob carol alice
