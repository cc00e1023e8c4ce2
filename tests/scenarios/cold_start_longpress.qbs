# Right after a cold start the main list on screen already answers a long
# press on its navigation bar, without being shown a second time.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
expect main alice
longpress
expect alert "验证身份"
type 7351
press 确定
wait 2.5
expect main alice bob
