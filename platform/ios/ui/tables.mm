// The system's own table screens on iOS: UITableViewCell's built-in labels
// and image view, UISwitch through a trampoline, a destructive
// UIContextualAction, and the table's section and row updates (which UIKit
// checks against the data source and raises about, as rt::Exception here).
#include "ui/tables.hpp"

#import <UIKit/UIKit.h>

#include <utility>

#include "bridge.h"
#include "trampoline.h"
#include "ui/views.hpp"
#include "uikit_values.h"

namespace ui {
namespace {

UITableView* tableOf(rt::Id table) { return (UITableView*)ios::object(table); }

void styleLabel(UILabel* label, const std::string& text, const Font& font, Color color) {
  label.text = ios::ns(text);
  label.font = ios::font(font);
  label.textColor = ios::color(color);
}

}  // namespace

rt::Id makeCell(const CellSpec& spec, const std::string& reuseIdentifier) {
  UITableViewCell* cell = [[UITableViewCell alloc]
        initWithStyle:static_cast<UITableViewCellStyle>(spec.style)
      reuseIdentifier:reuseIdentifier.empty() ? nil : ios::ns(reuseIdentifier)];
  rt::Id handle = ios::handle(cell);
  configureCell(handle, spec);
  return handle;
}

rt::Id dequeueCell(rt::Id table, const std::string& reuseIdentifier) {
  return ios::handle([tableOf(table) dequeueReusableCellWithIdentifier:ios::ns(reuseIdentifier)]);
}

void configureCell(rt::Id cell, const CellSpec& spec) {
  UITableViewCell* c = (UITableViewCell*)ios::object(cell);
  styleLabel(c.textLabel, spec.title, spec.titleFont, spec.titleColor);
  if (spec.detail.empty()) {
    c.detailTextLabel.text = nil;
  } else {
    styleLabel(c.detailTextLabel, spec.detail, spec.detailFont, spec.detailColor);
  }
  c.detailTextLabel.numberOfLines = spec.detailLines;
  c.imageView.image = (UIImage*)ios::object(spec.image);
  c.imageView.layer.cornerRadius = spec.imageCornerRadius;
  c.imageView.clipsToBounds = spec.imageCornerRadius != 0;
  c.accessoryType = static_cast<UITableViewCellAccessoryType>(spec.accessory);
  c.accessoryView = (UIView*)ios::object(spec.accessoryView);
  c.selectionStyle = spec.selectionHighlight ? UITableViewCellSelectionStyleDefault
                                             : UITableViewCellSelectionStyleNone;
  if (spec.hasTint) c.tintColor = ios::color(spec.tint);
  [c layoutIfNeeded];
}

rt::Id makeSwitch(bool on, Color onTint, std::function<void(rt::Id sw)> changed) {
  UISwitch* sw = [UISwitch new];
  sw.on = on;
  sw.onTintColor = ios::color(onTint);
  QBTrampoline* target = ios::trampoline([changed = std::move(changed)](id sender) {
    if (changed) changed(ios::handle(sender));
  });
  ios::keepWith(sw, target);
  [sw addTarget:target action:@selector(fire:) forControlEvents:UIControlEventValueChanged];
  return ios::handle(sw);
}

bool switchIsOn(rt::Id sw) {
  id s = ios::object(sw);
  return [s isKindOfClass:[UISwitch class]] && [(UISwitch*)s isOn];
}

rt::Id destructiveSwipe(const std::string& title, SwipeHandler handler) {
  UIContextualAction* action = [UIContextualAction
      contextualActionWithStyle:UIContextualActionStyleDestructive
                          title:ios::ns(title)
                        handler:^(UIContextualAction*, UIView*, void (^completionHandler)(BOOL)) {
                          ios::shielded("swipe action", [&] {
                            if (handler)
                              handler([completionHandler](bool performed) {
                                completionHandler(performed);
                              });
                          });
                        }];
  return ios::handle([UISwipeActionsConfiguration configurationWithActions:@[ action ]]);
}

void reloadSection(rt::Id table, long section, RowAnimation animation) {
  NSIndexSet* sections = [NSIndexSet indexSetWithIndex:NSUInteger(section)];
  ios::translating([&] {
    [tableOf(table) reloadSections:sections
                  withRowAnimation:static_cast<UITableViewRowAnimation>(animation)];
  });
}

void deleteRow(rt::Id table, long section, long row, RowAnimation animation) {
  NSIndexPath* path = [NSIndexPath indexPathForRow:row inSection:section];
  ios::translating([&] {
    [tableOf(table) deleteRowsAtIndexPaths:@[ path ]
                          withRowAnimation:static_cast<UITableViewRowAnimation>(animation)];
  });
}

long shownRowCount(rt::Id table, long section) {
  long rows = 0;
  ios::translating([&] { rows = long([tableOf(table) numberOfRowsInSection:section]); });
  return rows;
}

void styleTable(rt::Id table, const TableLook& look) {
  UITableView* t = tableOf(table);
  t.backgroundColor = ios::color(look.background);
  t.separatorInset = UIEdgeInsetsMake(0, look.separatorInsetLeft, 0, 0);
  t.estimatedRowHeight = look.estimatedRowHeight;
  if (look.automaticRowHeight) t.rowHeight = UITableViewAutomaticDimension;
}

// Each label as high as its text needs at the header's inner width, 4
// points apart.
rt::Id setStackedHeader(rt::Id table, double width, double margin,
                        const std::vector<HeaderLine>& lines) {
  UIView* header = [UIView new];
  double inner = width - 2 * margin;
  double height = 0;
  for (const HeaderLine& l : lines) {
    UILabel* label = (UILabel*)ios::object(
        makeLabel(l.text, LabelStyle{l.font, l.color, {0, 0, 0, 0}, true, 0, false, 0}));
    CGSize fitted = [label sizeThatFits:CGSize{inner, CGFLOAT_MAX}];
    label.frame = CGRect{{margin, height}, {inner, fitted.height}};
    [header addSubview:label];
    height += fitted.height + 4;
  }
  header.frame = CGRect{{0, 0}, {width, height}};
  tableOf(table).tableHeaderView = header;
  return ios::handle(header);
}

}  // namespace ui
