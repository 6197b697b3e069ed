#pragma once

#include "tests/app/desktop/PhotoWindow.h"

#include <QPlainTextEdit>

namespace korvo {

/// The field of that title in the Info tab.
inline QPlainTextEdit& field(TestWindow& t, const char* title)
{
    for (auto* const edit : t.window->findChildren<QPlainTextEdit*>())
        if (edit->accessibleName() == title)
            return *edit;
    throw std::out_of_range(title);
}

inline void type(TestWindow& t, const char* title, const char* text)
{
    auto& edit = field(t, title);
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
}

/// Lets what was typed, and what is read of the photos, arrive.
inline void settle()
{
    QTest::qWait(20);
}

} // namespace korvo
