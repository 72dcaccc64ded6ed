"""Plants one violation of each kind in a small house and asks the check what it sees."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import check_house  # noqa: E402

GOOD = {
    "app/main.cpp": '#include "ui/press/a.h"\n#include "platform/x/x.h"\n',
    "ui/press/a.h": '#include "ui/records/r.h"\n#include "audio/b.h"\n#include <vector>\n',
    "ui/press/a.cpp": '#include "ui/press/a.h"\n#include "midi/m.h"\n',
    "ui/records/r.h": '#include "platform/p.h"\n',
    "ui/wiring.h": "", "engine/dsp/ops.cpp": "// Of engine/bass.h: effects.", "platform/common/p.cpp": "", "platform/x/y.cpp": "",
    "ui/wiring.cpp": '#include "ui/press/a.h"\n',
    "audio/b.h": '#include "model/c.h"\n#include "engine/bass.h"\n', "model/c.h": "", "midi/m.h": '#include "audio/b.h"\n',
    "platform/p.h": "#include <string>\n",
    "platform/x/x.h": '#include <foreign/api.h>\n#include "platform/p.h"\n',
    "engine/bass.h": "", "engine/graph/g.h": '#include "engine/tempo/t.h"\n', "engine/tempo/t.h": '#include "engine/bass.h"\n',
    "tests/t.cpp": "#include <gtest/gtest.h>\n",
}

PLANTED = [  # file, its text, what the check says
    ("model/c.h", '#include "audio/b.h"', "may not look up into audio/"),
    ("midi/m.h", '#include "online/o.h"', "may not look up into online/"),
    ("ui/records/r.h", '#include "ui/windows/w.h"', "may not look up into ui/windows/"),
    ("ui/press/a.h", '#include "ui/wiring.h"', "may not look up into ui/wiring.h"),
    ("engine/tempo/t.h", '#include "engine/graph/g2.h"', "may not look up into engine/graph/"),
    ("engine/bass.h", '#include "engine/dsp/d.h"', "is the ground"),
    ("audio/b.h", '#include "engine/graph/g.h"', "use engine/bass.h"),
    ("ui/press/a.h", '#include "engine/bass.h"', "may not look up into engine/"),
    ("app/main.cpp", "#include <thread>", "starts no threads"),
    ("audio/b.h", '#include "platform/x/x.h"', "only platform/*.h"),
    ("audio/b.h", "#include <dlfcn.h>", "not of the standard library"),
    ("platform/p.h", "#include <QString>", "not of the standard library"),
    ("app/main.cpp", "  #  include <unistd.h>", "not of the standard library"),
    ("model/lone.cpp", "// Alone.", "has no header"),
    ("engine/dsp/ops.cpp", "// Of engine/away.h: effects.", "has no header"),
    ("model/c.h", "\n" * 601, "600 at most"),
]


class House(unittest.TestCase):
    def faults(self, planted):
        with tempfile.TemporaryDirectory() as folder:
            house = {**GOOD, **planted}
            for name, text in house.items():
                path = pathlib.Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            return check_house.check(pathlib.Path(folder), list(house))

    def test_planted(self):
        self.assertEqual([], self.faults({}))
        for name, text, said in PLANTED:
            with self.subTest(f"{name}: {text.strip()}"):
                faults = [fault for fault in self.faults({name: text}) if "circle" not in fault]
                self.assertEqual(1, len(faults), faults)
                self.assertIn(said, faults[0])

    def test_circles(self):
        headers = {"model/e.h": '#include "model/f.h"', "model/f.h": '#include "model/e.h"'}
        self.assertIn("files in a circle: model/e.h, model/f.h", self.faults(headers))
        subjects = {"model/e.h": "", "model/f.h": "", "model/e.cpp": '#include "model/f.h"', "model/f.cpp": '#include "model/e.h"'}
        self.assertEqual(["subjects in a circle: model/e, model/f"], self.faults(subjects))
        folders = {"platform/x/y.h": '#include "platform/z/z.h"', "platform/z/z.h": '#include "platform/x/x.h"'}
        self.assertEqual(["folders in a circle: platform/x, platform/z"], self.faults(folders))


if __name__ == "__main__":
    unittest.main()
