#pragma once
// Small helpers the tab pages share: naming a widget after its control, and the caption of
// each of the five indexes (the term list tabs and the interval term list tabs).

#include <QString>

#include "session/session.h"

namespace sylvora::app {

// Sets the widget's objectName, so that tests find it by its control's name; returns it.
template <typename Widget>
Widget* Named(Widget* widget, const QString& name) {
  widget->setObjectName(name);
  return widget;
}

// "Words", "Tags", "Links", "Mentions", "Users".
inline QString IndexCaption(IndexKind kind) {
  switch (kind) {
    case IndexKind::kWords:
      return QStringLiteral("Words");
    case IndexKind::kHashtags:
      return QStringLiteral("Tags");
    case IndexKind::kLinks:
      return QStringLiteral("Links");
    case IndexKind::kMentions:
      return QStringLiteral("Mentions");
    case IndexKind::kUsers:
      return QStringLiteral("Users");
  }
  return {};
}

}  // namespace sylvora::app
