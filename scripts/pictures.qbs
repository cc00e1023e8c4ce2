# The README's pictures (scripts/pictures.sh writes them to @OUT@ and shrinks
# them): the hidden main list, the contacts list, a search, the Face ID
# prompt, a ringing call, the panel, the window editor's first dialog, and
# outside the app the lock screen and the share sheet, with no sign of the
# secret on either.
clock 09:41
friend alice nick=Alice
friend bob nick=Bob remark=老板
friend carol nick=Carol
room team@chatroom title=Team
session team@chatroom
session carol
session bob
session alice
secret bob
setting revealAuthMode 1
setting secretNotifyMode 0
launch
send team@chatroom "十点开会"
message carol "收到"
send alice "晚上一起吃饭？"
wait 5
expect main alice carol team@chatroom
picture @OUT@/main-hidden.png
open contacts
expect contacts alice carol
picture @OUT@/contacts.png
open search a
picture @OUT@/search.png
open main
shake
expect screen biometric
picture @OUT@/faceid.png
biometric fail
wait 1
call video carol
expect ringing carol
picture @OUT@/call.png
wait 31
background
message alice "明天见"
message bob "在吗？"
message team@chatroom "周报发群里了"
expect lockscreen team@chatroom alice
picture lockscreen @OUT@/lockscreen.png
expect suggestions team@chatroom alice carol
picture sharesheet @OUT@/sharesheet.png
foreground
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
expect screen panel
picture @OUT@/panel.png
panel tap 0 1
panel tap 2 1
wait 1
time 22:30
picture @OUT@/window-editor.png
