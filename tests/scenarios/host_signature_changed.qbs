# A host build whose message-arrival method takes another argument: that
# hook is skipped with one line naming both encodings, the host keeps its
# own method, and the other tests on the in-app banner's way still keep the
# secret's banner away.
host variant notify-args-changed
friend alice nick=Alice
friend bob nick=Bob
secret bob
launch
expect log "[QB] hook skipped -[QuickReplyMsgMgr onNewMsgArriving:NotifyFlag:]: host types v@:@q@, hook types v@:@q"
expect log "skipped: -[QuickReplyMsgMgr onNewMsgArriving:NotifyFlag:]"
expect no-log " ex: "
message alice "hi"
expect banner alice
expect sound alice
message bob "hi"
expect no-banner bob
expect no-sound bob
