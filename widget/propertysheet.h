// The property sheet a host shows for a ZentrelWidget in its design mode: the pages the
// control names, in its order (its own "General" page, then the stock font and colour pages),
// as tabs, with OK, Cancel and Apply. Apply and OK apply every page; Cancel drops what was not
// applied.
#pragma once
#include <QDialog>
#include <memory>

#include "platform/com/export.h"

class QTabWidget;
class QPushButton;
class ZentrelWidget;

class ZENTREL_EXPORT ZentrelPropertySheet : public QDialog {
    Q_OBJECT
public:
    explicit ZentrelPropertySheet(ZentrelWidget* control, QWidget* parent = nullptr);
    ~ZentrelPropertySheet() override;

    QTabWidget* pages() const { return m_pTabs; }
    QPushButton* applyButton() const { return m_pApply; }

public slots:
    void apply();

private:
    struct Pages;
    std::unique_ptr<Pages> m_pages;
    QTabWidget* m_pTabs;
    QPushButton* m_pApply;
};
