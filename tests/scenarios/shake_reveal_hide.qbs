# Manual mode: a shake asks for the password and reveals; a wrong password
# reveals nothing; a shake while revealed hides at once, without a question.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
expect main alice

shake
expect log "[QB] show auth from shake"
expect screen alert
expect alert "验证身份"
type 1234
press 确定
wait 0.5
expect hidden
expect screen main

wait 1
shake
type 7351
press 确定
wait 0.5
expect revealed
wait 1
expect main alice bob

shake
expect hidden
wait 1
expect main alice
