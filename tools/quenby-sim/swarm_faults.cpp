#include "swarm_faults.hpp"

namespace qbsim::swarm {

const std::vector<HostFault>& hostFaults() {
  static const std::vector<HostFault> table = {
      // Moments
      {"host lacks WCFacade", kMoments},
      {"host lacks WCFacade countOfTimelineDataItem", kMoments},
      {"host lacks WCFacade getTimelineDataItemOfIndex:", kMoments},
      {"host raises WCDataItem username", kMoments},
      // forwarding
      {"host lacks RecentForwardScrollView", kForward},
      {"host lacks SessionSelectController", kForward},
      {"host lacks SessionSelectView", kForward},
      // contacts and search
      {"host lacks ContactsDataLogic", kContacts},
      {"host lacks ContactsDataLogic getContactsArrayWith:", kContacts},
      {"host lacks ContactTagSearchFromContactLogic", kSearch},
      {"host lacks FTSContactDataProvider", kSearch},
      {"host lacks CContactMgr getSelfContact", 0},
      {"host raises CContactMgr getContactByNameFromDB:", kContacts | kSearch | kForward},
      {"host raises CContactMgr getAllContactUserName", kContacts | kSearch | kForward},
      // the main list's own hooks have fallbacks: nothing exempt
      {"host lacks NewMainFrameViewController viewDidAppear:", 0},
      {"host lacks NewMainFrameViewController viewWillAppear:", 0},
      {"host lacks BaseMsgContentViewController viewDidAppear:", 0},
      {"host lacks MMContext", 0},
      {"host raises MainSessionMgr rebuildMainSessions", kMainList},
      // messages
      {"host lacks QuickReplyMsgMgr", kBanner},
      {"host lacks MMLocalNotificationMgr", kBanner},
      {"host lacks MainFrameLogicController playNewMsgNotify:NotifyFlag:", kBanner},
      {"host lacks MMNewSessionMgr p_notifyNewMsg:withNotifyFlag:", kBanner},
      {"host raises AudioHelper playVibration", kBanner},
      // calls
      {"host lacks VoipCXMgr", kRinging},
      {"host lacks MonoServiceMsgMgr", kRinging},
      {"host variant callkit-end-none", kRinging},
      {"host variant callkit-end-reportended", 0},
      {"host variant callkit-end-atdate", 0},
      // host builds that differ without being broken
      {"host variant list-through-logic", 0},
      {"host variant session-key-first", 0},
      {"host variant fts-immutable", 0},
      {"host variant push-3arg", 0},
      {"host variant message-keys-alt", 0},
      // what the host leaves with the system: nothing at all, or donations
      // that name chats only by display name (not caught, by design)
      {"host variant no-donations", 0},
      {"host variant donate-by-name", kSuggestions},
  };
  return table;
}

}  // namespace qbsim::swarm
