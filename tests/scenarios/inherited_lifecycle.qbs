# A host build whose chat and main-list screens define no appearance methods
# of their own: the library hooks them on those screens alone, so every other
# screen still appears normally and the long press still works in a chat.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
host lacks BaseMsgContentViewController viewDidAppear:
host lacks NewMainFrameViewController viewWillAppear:
host lacks NewMainFrameViewController viewDidAppear:
launch
wait 2
expect main alice
open contacts
expect screen contacts
open main
expect main alice
open chat alice
wait 1
longpress
expect alert "验证身份"
type 7351
press 确定
wait 2.5
expect revealed
open main
wait 1
expect no-log "FATAL"
expect main alice bob
