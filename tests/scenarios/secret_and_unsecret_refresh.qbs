# Marking a chat secret and back, one right after the other, while the main
# list is on screen: each change shows at once, however close together.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
launch
wait 1
expect main alice bob
secret bob
expect main alice
expect hidden
unsecret bob
expect main alice bob
secret bob
unsecret bob
expect main alice bob
