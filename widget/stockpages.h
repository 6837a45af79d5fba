// The stock property pages that a host shows beside the control's own: one for its font
// properties and one for its colour properties. Each lists the Qt properties of that type of
// the object it edits, shows Qt's chooser for the one picked, and writes what was chosen on
// Apply.
#pragma once
#include <QColorDialog>
#include <QComboBox>
#include <QFontDialog>
#include <QMap>
#include <QMetaType>
#include <QWidget>

class CStockPropertyPage : public QWidget {
    Q_OBJECT
public:
    // Writes every property changed on the page to the object.
    void apply();
    bool isDirty() const { return !m_changed.isEmpty(); }
    QComboBox* propertyList() const { return m_names; }

signals:
    void changed();

protected:
    CStockPropertyPage(QObject* target, QMetaType::Type type, QWidget* chooser, QWidget* parent);
    // What the chooser shows, and showing a value in it.
    virtual QVariant chosen() const = 0;
    virtual void show(const QVariant& value) = 0;
    // The chooser tells the page of a change.
    void chooserChanged();
    QWidget* chooserWidget() const { return m_pChooser; }
    // Shows the property at `index` of the list.
    void select(int index);

private:
    QWidget* m_pChooser;
    QObject* m_target;
    QComboBox* m_names;
    QMap<QString, QVariant> m_changed;
    bool m_bShowing = false;
};

class CStockFontPage final : public CStockPropertyPage {
    Q_OBJECT
public:
    explicit CStockFontPage(QObject* target, QWidget* parent = nullptr);
    QFontDialog* chooser() const { return static_cast<QFontDialog*>(chooserWidget()); }

protected:
    QVariant chosen() const override { return chooser()->currentFont(); }
    void show(const QVariant& value) override { chooser()->setCurrentFont(value.value<QFont>()); }
};

class CStockColorPage final : public CStockPropertyPage {
    Q_OBJECT
public:
    explicit CStockColorPage(QObject* target, QWidget* parent = nullptr);
    QColorDialog* chooser() const { return static_cast<QColorDialog*>(chooserWidget()); }

protected:
    QVariant chosen() const override { return chooser()->currentColor(); }
    void show(const QVariant& value) override { chooser()->setCurrentColor(value.value<QColor>()); }
};
