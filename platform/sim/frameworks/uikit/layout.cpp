// The layout pass: rows stacked by the heights the delegate answers, inset
// groups with their headers and footers, alerts centred with their buttons
// in UIKit's arrangement (two side by side, more stacked).
#include "sim/frameworks/uikit/layout.hpp"

#include <algorithm>

#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/frameworks/uikit/interaction.hpp"
#include "sim/frameworks/uikit/uikit.hpp"
#include "ui/pickers.hpp"

namespace sim {
namespace {

using rt::Id;

constexpr double kInset = 16;  // an inset group's margin
constexpr ui::Font kSectionText{13, ui::Weight::Regular};
constexpr double kAlertWidth = 270;

rt::CGRect rect(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }

// A host list's rows as its table showed them at its last reload, with the
// footers its data source gives them.
std::vector<ShownSection> shownAtReload(Id table) {
  std::vector<ShownSection> out;
  Id ds = rt::send<Id>(table, "dataSource");
  bool footers = ds && rt::respondsTo(ds, rt::sel("tableView:titleForFooterInSection:"));
  for (const auto& cells : viewState(table)->shownRows) {
    ShownSection s;
    if (footers)
      s.footer = rt::asString(rt::send<Id>(ds, "tableView:titleForFooterInSection:", table,
                                           long(out.size())))
                     .value_or("");
    for (Id cell : cells) {
      ShownRow r;
      r.cell = cell;
      if (CellState* c = cell ? findExtra<CellState>(cell) : nullptr) {
        r.title = c->spec.title;
        r.detail = c->spec.detail;
      }
      r.height = viewState(table)->rowHeight > 0 ? viewState(table)->rowHeight : 44;
      s.rows.push_back(r);
    }
    out.push_back(std::move(s));
  }
  return out;
}

// A row's height: the delegate's answer, or, for self-sizing rows, enough
// for the title and detail as they wrap.
double rowHeight(const ShownRow& row, double width, const MeasureText& measure) {
  CellState* c = row.cell ? findExtra<CellState>(row.cell) : nullptr;
  if (!c) return row.height;
  if (c->represented) return row.height;  // the host's lists keep their fixed height
  double text = measure(c->spec.title, c->spec.titleFont, width);
  if (!c->spec.detail.empty() && c->spec.style == ui::CellStyle::Subtitle)
    text += 2 + measure(c->spec.detail, c->spec.detailFont, width);
  return std::max(row.height, text + 22);
}

double accessoryWidth(const ShownRow& row) {
  CellState* c = row.cell ? findExtra<CellState>(row.cell) : nullptr;
  if (!c) return 0;
  if (c->spec.accessoryView) return 51;
  return c->spec.accessory == ui::Accessory::None ? 0 : 14;
}

}  // namespace

TableFrame layoutTable(Id table, rt::CGRect frame, double topInset, const MeasureText& measure) {
  TableFrame out;
  viewState(table)->frame = frame;
  Id ds = rt::send<Id>(table, "dataSource");
  bool controllerTable = ds && rt::isKindOf(ds, "UITableViewController");
  std::vector<ShownSection> sections = controllerTable ? showTable(table) : shownAtReload(table);
  const TableState& t = extra<TableState>(table);
  out.insetGrouped = t.style == long(ui::TableStyle::InsetGrouped);
  double margin = out.insetGrouped ? kInset : 0;
  double width = frame.size.width - 2 * margin;
  out.headerViewHeight = t.headerSize.height;
  double y = topInset + out.headerViewHeight;
  for (const ShownSection& s : sections) {
    SectionFrame sf;
    sf.header = s.header;
    sf.footer = s.footer;
    if (out.insetGrouped) y += s.header.empty() ? 18 : 0;
    if (!s.header.empty()) {
      double h = measure(s.header, kSectionText, width - 2 * kInset);
      sf.headerFrame = rect(margin + kInset, y + 14, width - 2 * kInset, h);
      y += h + 20;
    }
    double top = y;
    for (std::size_t i = 0; i < s.rows.size(); ++i) {
      RowFrame rf;
      rf.row = s.rows[i];
      double aw = accessoryWidth(rf.row);
      double textWidth = width - 2 * kInset - (aw > 0 ? aw + 8 : 0) -
                         (rf.row.cell && findExtra<CellState>(rf.row.cell) &&
                                  findExtra<CellState>(rf.row.cell)->spec.image
                              ? 44
                              : 0);
      double h = rowHeight(rf.row, textWidth, measure);
      rf.frame = rect(margin, y, width, h);
      rf.accessory = rect(margin + width - kInset - aw, y + (h - (aw > 14 ? 31 : 14)) / 2, aw,
                          aw > 14 ? 31 : 14);
      rf.firstInGroup = i == 0;
      rf.lastInGroup = i + 1 == s.rows.size();
      if (rf.row.cell) viewState(rf.row.cell)->frame = rf.frame;
      sf.rows.push_back(rf);
      y += h;
    }
    sf.group = rect(margin, top, width, y - top);
    if (!s.footer.empty()) {
      double h = measure(s.footer, kSectionText, width - 2 * kInset);
      sf.footerFrame = rect(margin + kInset, y + 6, width - 2 * kInset, h);
      y += h + 12;
    }
    out.sections.push_back(std::move(sf));
  }
  return out;
}

AlertFrame layoutAlert(Id alert, const MeasureText& measure) {
  AlertFrame f;
  AlertState* a = alertState(alert);
  if (!a) return f;
  double inner = kAlertWidth - 32, y = 20;
  f.title = rect(16, y, inner, measure(a->title, {17, ui::Weight::Semibold}, inner));
  y += f.title.size.height;
  if (!a->message.empty()) {
    f.message = rect(16, y + 4, inner, measure(a->message, {13, ui::Weight::Regular}, inner));
    y += f.message.size.height + 4;
  }
  y += 16;
  // The wheel sits over the blank lines its alert's message leaves for it;
  // the alert is at least as high as the wheel asks.
  double minHeight = 0;
  if (Id picker = alertTimePicker(alert)) {
    const ui::PickerLayout& p = extra<DatePickerState>(picker).layout;
    f.picker = rect((kAlertWidth - 250) / 2, p.top, 250, p.height);
    viewState(picker)->frame = f.picker;
    y = std::max(y, p.top + p.height + 8);
    minHeight = p.minAlertHeight;
  }
  for (std::size_t i = 0; i < a->textFields.size(); ++i) {
    f.fields.push_back(rect(16, y, inner, 30));
    viewState(a->textFields[i])->frame = f.fields.back();
    y += 34;
  }
  if (!a->textFields.empty()) y += 8;
  // UIKit places the cancel action on the left of two buttons and at the
  // bottom of more, whatever the order they were added in.
  std::size_t n = a->actions.size();
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < n; ++i)
    if (a->actions[i].style != ui::ActionStyle::Cancel) order.push_back(i);
  for (std::size_t i = 0; i < n; ++i)
    if (a->actions[i].style == ui::ActionStyle::Cancel)
      order.insert(n == 2 ? order.begin() : order.end(), i);
  f.buttons.resize(n);
  for (std::size_t place = 0; place < n; ++place) {
    if (n == 2)
      f.buttons[order[place]] = rect(double(place) * kAlertWidth / 2, y, kAlertWidth / 2, 44);
    else
      f.buttons[order[place]] = rect(0, y + 44 * double(place), kAlertWidth, 44);
  }
  y += n == 2 ? 44 : 44 * double(n);
  if (y < minHeight) {
    for (rt::CGRect& b : f.buttons) b.origin.y += minHeight - y;
    y = minHeight;
  }
  f.box = rect((kScreenWidth - kAlertWidth) / 2, (kScreenHeight - y) / 2, kAlertWidth, y);
  viewState(rt::send<Id>(alert, "view"))->frame = f.box;
  return f;
}

}  // namespace sim
