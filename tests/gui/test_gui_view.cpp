// How the canvas shows the picture: zoom, place, range of grey, size of the window; what is under the
// pointer.
#include "../support/captured_lines.h"
#include "../support/paged_window.h"
#include "view_page.h"

#include <QScrollBar>
#include <QSettings>

#include <random>

namespace {

const QColor outline("#a8a8ff");

// The screen pixels of this colour, as rows of text.
std::string drawn(const QImage& image, QRect area, QColor color)
{
    std::string rows;
    for (int y = area.top(); y <= area.bottom(); ++y, rows += '\n')
        for (int x = area.left(); x <= area.right(); ++x)
            rows += image.pixelColor(x, y) == color ? '#' : '.';
    return rows;
}

}    // namespace

class TestGuiView : public QObject {
    Q_OBJECT
private slots:
    void plainViewShowsThePictureOfTheBareWindow()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        QCOMPARE(w.size(), QSize(620, 878));
        QCOMPARE(w.frame_canvas->geometry(), QRect(10, 10, 601, 601));
        const QImage plain = w.seen();
        QCOMPARE(plain.copy(1, 1, 50, 30), w.frame_canvas->picture().toImage().copy(1, 1, 50, 30));
        w.press(Qt::Key_Right);
        QCOMPARE(w.pictures_since_last_asked(), 1);
        const QImage picture = w.frame_canvas->picture().toImage();
        w.press(Qt::Key_1);
        w.canvas().set_outline_width(3);
        w.press(Qt::Key_Left);
        w.press(Qt::Key_Right);
        QCOMPARE(w.pictures_since_last_asked(), 2);
        QCOMPARE(w.frame_canvas->picture().toImage(), picture);
        QVERIFY(w.shown_by().scale() > 9);    // stepping keeps the view
        w.press(Qt::Key_0);
        w.canvas().set_outline_width(1);
        w.press(Qt::Key_Left);
        QCOMPARE(w.seen(), plain);
    }

    // The square of 4 x 4 pixels at (10, 5), at 4:1 and smaller.
    void outlinesAreOneScreenPixelWideAtTheEdgeOfTheMask()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        for (int i = 0; i < 4; ++i)
            w.press(Qt::Key_Plus);
        w.press(Qt::Key_0);
        for (int i = 0; i < 4; ++i)
            turn_wheel(w, {0, 0}, 120, Qt::ControlModifier);
        QCOMPARE(w.shown_by().scale(), 4.0);
        const QRect square = w.shown_by().screen_area({10, 5, 4, 4});
        QCOMPARE(square.size(), QSize(16, 16));
        std::string expected(18, '.');
        expected += "\n." + std::string(16, '#') + ".\n";
        for (int i = 0; i < 14; ++i)
            expected += ".#" + std::string(14, '.') + "#.\n";
        expected += "." + std::string(16, '#') + ".\n" + std::string(18, '.') + "\n";
        QCOMPARE(drawn(w.seen(), square.adjusted(-1, -1, 1, 1), outline), expected);
        w.canvas().set_outline_width(2);
        QCOMPARE(drawn(w.seen(), square, outline).substr(17, 17), std::string(16, '#') + "\n");
        w.canvas().set_outline_width(1);
        QTest::keyPress(&w, Qt::Key_H);
        QVERIFY(drawn(w.seen(), w.frame_canvas->rect(), outline).find('#') == std::string::npos);
        QTest::keyRelease(&w, Qt::Key_H);
        QVERIFY(drawn(w.seen(), square, outline).find('#') == 0);
        w.m_q_roiimgdb->remove_after(-1);    // as looking at far time points does
        QVERIFY(drawn(w.seen(), square, outline).find('#') == 0);
        w.press(Qt::Key_0);
        for (int i = 0; i < 2; ++i)
            turn_wheel(w, {0, 0}, -120, Qt::ControlModifier);
        QCOMPARE(w.shown_by().scale(), 0.5);
        const QRect half(w.shown_by().screen_pixel({10, 5}), w.shown_by().screen_pixel({13, 8}));
        QCOMPARE(half.width() + half.height(), 5);    // 3 and 2, or the other way round
        const std::string around = drawn(w.seen(), half.adjusted(-1, -1, 1, 1), outline);
        QCOMPARE(std::ranges::count(around, '#'), half.width() * half.height());
    }

    void whatIsUnderThePointerIsWhatIsShownThere()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        put_roi(w, {40, 30, 20, 0}, 9, 7);
        put_roi(w, {700, 650, 20, 0}, 30, 20);    // beyond the bare window's canvas
        w.show_changes();
        std::mt19937 random(3);
        const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        const int zooming[] = {Qt::Key_Plus, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0, Qt::Key_1};
        const QSize sizes[] = {{620, 878}, {1600, 1200}, {620, 560}, {901, 777}};
        const QImage picture = w.frame_canvas->picture().toImage();
        int hits = 0;
        for (int i = 0; i < 300; ++i) {
            w.resize(sizes[below(4)]);
            w.press(zooming[below(5)]);
            turn_wheel(w, {below(601), below(601)}, 120 * (below(5) - 2), Qt::ControlModifier);
            drag(w, Qt::MiddleButton, {300, 300}, {below(601), below(601)});
            const auto r = std::next(w.m_roidb->db.begin(), below(2) ? 1 : below(4));
            w.canvas().reveal({r->second.x(), r->second.y(), 2, 2});
            const QPoint at = w.shown_by().screen_pixel({r->second.x() + below(3), r->second.y() + below(3)});
            const auto shown_there = [&] {
                const QPoint p = w.shown_by().picture_pixel(at);
                const std::string key = w.xyROI(p.x(), p.y());
                return key.empty() ? keys() : keys{key};
            };
            move_pointer(w, at.x(), at.y());
            if (!w.frame_canvas->rect().contains(at))
                continue;
            hits += !shown_there().empty();
            QCOMPARE(w.m_mouse_over_roi_set, shown_there());
            i % 2 ? w.press(zooming[below(5)]) : turn_wheel(w, at, 120, Qt::ShiftModifier);
            QCOMPARE(w.m_mouse_over_roi_set, shown_there());
        }
        QVERIFY(hits > 50);
        w.m_mouse_over_roi_set.clear();
        w.show_changes();
        QCOMPARE(w.frame_canvas->picture().toImage(), picture);
    }

    void largePicturesAreReachedByDraggingAndScrolling()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        auto* const across = w.findChild<QScrollBar*>("scroll_across");
        auto* const down = w.findChild<QScrollBar*>("scroll_down");
        QVERIFY(!across->isVisible() && !down->isVisible());
        put_roi(w, {900, 20, 20, 0}, 60, 20);
        w.show_changes();
        QVERIFY(across->isVisible() && !down->isVisible());
        QCOMPARE(across->geometry(), QRect(10, 611, 601, 9));
        across->setValue(across->maximum());
        QCOMPARE(w.shown_by().picture_pixel({600, 0}).x(), 959);
        click(w, 600 - 30, 30);
        QVERIFY(w.m_selected_roi_set.contains("000020900020"));
        drag(w, Qt::MiddleButton, {100, 100}, {300, 100});
        QCOMPARE(across->value(), across->maximum() - 200);
        drag(w, Qt::MiddleButton, {100, 100}, {100, 150});    // lower than the canvas needs it to be
        across->setValue(40);
        QCOMPARE(w.shown_by().corner(), QPointF(-40, 50));
        w.canvas().pan_by({0, -50});
        QTest::keyPress(&w, Qt::Key_Space);
        drag(w, Qt::LeftButton, {100, 100}, {5000, 100});
        QTest::keyRelease(&w, Qt::Key_Space);
        QVERIFY(w.shown_by().is_plain());
        turn_wheel(w, {5, 5}, 120, Qt::AltModifier);    // the plane before
        QCOMPARE(w.focal_plane(), 19);
        QVERIFY(w.openRoiFile(recording.file));
        QVERIFY(!across->isVisible());
    }

    // On a shallow recording that opens on a plane with nothing to show.
    void allOfAPlaneFitsWhateverOthersShow()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        put_roi(w, {3000, 20, 40, 0});    // a slip
        const CapturedLines err(std::cerr);
        for (const int z : {50, 40, 20}) {
            w.setCurrentFocalPlane(z);
            w.press(Qt::Key_1);
        }
        const view_transform fitted = w.shown_by();
        QCOMPARE(w.shown_by().scale(), 601 / 60.0);
        put_roi(w, {3000, 20, 41, 0});
        w.setCurrentFocalPlane(41);
        w.setCurrentFocalPlane(20);
        QCOMPARE(w.shown_by(), fitted);
        w.press(Qt::Key_1);
        QCOMPARE(w.shown_by(), fitted);
        for (const char* bar : {"scroll_across", "scroll_down"})
            QVERIFY(!w.findChild<QScrollBar*>(bar)->isVisible());
    }

    // Outlines and lineage, moved by whole pixels.
    void pannedAtOneToOneEveryPixelIsThatOfThePicture()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        put_roi(w, {660, 640, 20, 1}, 30, 20);
        put_roi(w, {33, 12, 20, 1}, 11, 5);
        const std::string mother = put_unit(w, {"000020010005"});
        w.link(mother, put_unit(w, {"001020010005", put_roi(w, {33, 22, 20, 1}, 8, 3)}));
        w.setCurrentTimePoint(1);
        w.press(Qt::Key_C);
        w.canvas().pan_by({-9, -4});
        w.canvas().set_outline_width(1);
        QCOMPARE(w.shown_by().corner(), QPointF(-9, -4));
        const QImage picture = w.frame_canvas->picture().toImage().convertToFormat(QImage::Format_RGB32);
        QCOMPARE(w.seen().convertToFormat(QImage::Format_RGB32).copy(1, 1, 40, 30),
                 picture.copy(10, 5, 40, 30));
    }

    // Made smaller, in place or larger: a small canvas shows what a large one shows there, also after
    // panning.
    void onlyThePartThatIsSeenIsMade()
    {
        std::mt19937 random(5);
        QImage image(157, 93, QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y,
                               0xff000000 | (x < 80 ? random() & 0xffffff : (random() & 255) * 0x10101));
        const QPixmap picture = QPixmap::fromImage(image);
        for (const int steps : {-5, -3, -2, -1, 0, 1, 4}) {
            visible_image large, small;
            for (const QPoint corner : {QPoint(0, 0), QPoint(-13, -5), QPoint(3, -20)}) {
                view_transform view;
                view.zoom_by(steps, {0, 0});
                view.pan_by(corner);
                const display_range range{20, 200, 1.5};
                const QImage all = large.of(picture, view, {300, 200}, range, 0xff123456);
                QCOMPARE(small.of(picture, view, {31, 17}, range, 0xff123456), all.copy(0, 0, 31, 17));
                const QPoint p = view.picture_pixel({20, 10});
                const grey_table table = table_of(range);
                const QRgb there = image.rect().contains(p) ? image.pixel(p) : 0;
                if (steps >= 0 && image.rect().contains(p))
                    QCOMPARE(all.pixel(20, 10),
                             qRgb(table[qRed(there)], table[qGreen(there)], table[qBlue(there)]));
            }
        }
        image.fill(0xff808080);
        view_transform half;
        half.zoom_by(-3, {0, 0});
        QCOMPARE(visible_image().of(QPixmap::fromImage(image), half, {40, 20}, {}, 0).pixel(39, 19),
                 0xff808080);
    }

    void theWheelTurnsByWholeNotchesAndSidewaysUnderAlt()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        w.press(Qt::Key_1);
        const view_transform fitted = w.shown_by();
        turn_wheel(w, {5, 5}, 40, Qt::ControlModifier);
        QCOMPARE(w.shown_by(), fitted);
        turn_wheel(w, {5, 5}, 80, Qt::ControlModifier);
        QVERIFY(w.shown_by().scale() > fitted.scale());
        w.press(Qt::Key_0);
        for (const int notches : {1, 3, -2, 4}) {    // also while the picture is smaller than the canvas
            turn_wheel(w, {50, 30}, 120 * notches, Qt::ControlModifier);
            QCOMPARE(w.shown_by().picture_pixel({50, 30}), QPoint(50, 30));
        }
        const struct {
            QPoint turn;
            Qt::KeyboardModifiers held;
            int z;
        } rows[] = {{{120, 0}, Qt::AltModifier, 19}, {{-120, 0}, Qt::AltModifier, 20}, {{120, 0}, {}, 21}};
        for (const auto& row : rows) {
            QWheelEvent e({300, 300}, w.mapToGlobal(QPointF(300, 300)), {}, row.turn, Qt::NoButton, row.held,
                          Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&w, &e);
            QCOMPARE(w.focal_plane(), row.z);
        }
    }

    void theCutTakesEveryPlainPress()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        for (const Qt::MouseButton button : {Qt::MiddleButton, Qt::LeftButton, Qt::BackButton}) {
            w.m_split_mode = true;
            w.m_split_parents = {"a", "b"};
            QTest::keyPress(&w, Qt::Key_Space);
            click(w, 300, 300, button);
            QTest::keyRelease(&w, Qt::Key_Space);
            QVERIFY(!w.m_split_mode && w.m_split_parents.empty());
            QCOMPARE(w.said(), "No nucleus is chosen: press L and click one.");
        }
    }

    void theCanvasTakesTheRoomThatIsAdded()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        for (const QSize size : {QSize(1600, 1200), QSize(620, 560), QSize(620, 878)}) {
            w.resize(size);
            QCOMPARE(w.frame_canvas->geometry(), QRect(10, 10, size.width() - 19, size.height() - 277));
            QCOMPARE(w.slider_time_point->geometry(), QRect(150, size.height() - 258, 450, 20));
            QCOMPARE(w.tabWidget_control_panel->geometry(), QRect(10, size.height() - 168, 600, 150));
        }
        w.resize(100, 100);
        QCOMPARE(w.size(), QSize(620, 560));
        ShownWindow bare;
        bare.resize(900, 900);
        QCOMPARE(bare.frame_canvas->geometry(), QRect(10, 10, 601, 601));
    }

    void greyIsShownInTheRange()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const int grey = SmallRecording::grey(0, 20);
        const struct {
            display_range range;
            int shown;
        } rows[] = {{{0, 255, 1}, grey},
                    {{grey, 255, 1}, 0},
                    {{0, grey, 2}, 255},
                    {{grey - 10, grey + 30, 2}, 128},
                    {{grey - 10, grey + 30, 1}, 64}};
        for (const auto& row : rows) {
            w.canvas().set_range(row.range);
            QVERIFY(std::abs(w.seen().pixelColor(40, 10).red() - row.shown) <= 1);
        }
        QVERIFY(w.openRoiFile(recording.file));
        QVERIFY(w.canvas().range().is_plain());
    }

    void thePageKeepsWhatIsNotOfTheRecording()
    {
        const SmallRecording recording;
        QCoreApplication::setOrganizationName("test");
        QSettings().clear();
        {
            PagedWindow w(recording);
            auto* const page = w.findChild<ViewPage*>("viewPage");
            page->zoom_in->click();
            QVERIFY(w.shown_by().scale() > 1.4);
            page->zoom_original->click();
            QVERIFY(w.shown_by().is_plain());
            page->range_auto->click();    // of one grey
            const int grey = SmallRecording::grey(0, 20);
            QCOMPARE(w.canvas().range(), (display_range{grey, grey + 1, 1}));
            page->low->setValue(120);    // pushes the other end
            QCOMPARE(w.canvas().range(), (display_range{120, 121, 1}));
            QCOMPARE(page->high->value(), 121);
            page->high->setValue(50);
            QCOMPARE(page->low->value(), 49);
            page->gamma->setValue(2);
            QCOMPARE(w.canvas().range().gamma, 2.0);
            page->range_auto->click();
            QCOMPARE(w.canvas().range(), (display_range{grey, grey + 1, 2}));
            page->range_reset->click();
            w.tabWidget_control_panel->setCurrentWidget(page);
            for (const auto& [text, key, then] :
                 {std::tuple("80", Qt::Key_Return, 80), {"90", Qt::Key_Escape, 80}}) {
                auto* const field = page->high->findChild<QLineEdit*>();
                QTest::mouseClick(field, Qt::LeftButton);
                QVERIFY(page->high->hasFocus());
                field->selectAll();
                QTest::keyClicks(page->high, text);
                QTest::keyClick(page->high, key);
                QVERIFY(w.frame_canvas->hasFocus());
                QCOMPARE(w.canvas().range(), (display_range{0, then, 1}));
                QCOMPARE(page->high->value(), then);
            }
            page->outline_width->setValue(3);
            page->scale_bar->click();
            page->tails->setCurrentIndex(2);
            QVERIFY(w.marks().choice() == (mark_choice{true, true, tail_choice::of_near, 5}));
        }
        PagedWindow w(recording);
        auto* const page = w.findChild<ViewPage*>("viewPage");
        QVERIFY(w.marks().choice() == (mark_choice{true, true, tail_choice::of_near, 5}));
        QCOMPARE(page->outline_width->value(), 3);
        QVERIFY(w.canvas().range().is_plain());
        QSettings().clear();
        QCoreApplication::setOrganizationName({});
    }

    void marksAreDrawnOverThePictureAndOnlyWhereTheyBelong()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const QColor cross("#ff5050");
        const QImage before = w.seen();
        w.toggle_false_positive("000020010005");
        w.press(Qt::Key_1);
        QVERIFY(drawn(w.seen(), w.shown_by().screen_area({10, 5, 4, 4}), cross).find('#') !=
                std::string::npos);
        QVERIFY(drawn(w.seen(), w.shown_by().screen_area({20, 5, 30, 10}), cross).find('#') ==
                std::string::npos);
        w.findChild<ViewPage*>("viewPage")->marks->click();
        QVERIFY(drawn(w.seen(), w.frame_canvas->rect(), cross).find('#') == std::string::npos);
        w.toggle_false_positive("000020010005");
        w.press(Qt::Key_0);
        QCOMPARE(w.seen(), before);
    }
};

QTEST_MAIN(TestGuiView)
#include "test_gui_view.moc"
