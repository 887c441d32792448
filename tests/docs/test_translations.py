#!/usr/bin/env python3
"""The Chinese documents say what the English ones say; a change of one without the other fails."""
import pathlib
import re
import tempfile
import unittest

from documents import cells
from translations import MANUALS, PAIRS, ROOT, Pair, accept, digest, manual_differences

ENGLISH = """# Title

[install](install.md#second), `key` and ![a picture](picture.png)

## Second

| a | b |
|---|---|
| `one \\| two` | text |

```sh
run --this   # and why
```

- an item:

  ```js
  call(); // and why
  ```

    {"API":"Clear"}
"""
CHINESE = """# 标题
<!-- translates: docs/install.md DIGEST -->

[安装](install.md#第二)，`key` 和 ![图](../picture.png)

## 第二

| 甲 | 乙 |
|---|---|
| `one \\| two` | 文字 |

```sh
run --this   # 为什么
```

- 一项：

  ```js
  call(); // 为什么
  ```

    {"API":"Clear"}
"""


class Checked(unittest.TestCase):
    """That the comparison sees what it is for."""

    def differences(self, english=ENGLISH, chinese=CHINESE, stale=False):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "docs/zh").mkdir(parents=True)
            (root / "docs/picture.png").touch()
            (root / "docs/install.md").write_text(english, encoding="utf-8")
            state = "0" * 16 if stale else digest(root / "docs/install.md")
            (root / "docs/zh/install.md").write_text(chinese.replace("DIGEST", state), encoding="utf-8")
            pairs = {"docs/install.md": "docs/zh/install.md"}
            return Pair("docs/install.md", "docs/zh/install.md", root, pairs).differences()

    def test_equal_documents_differ_in_nothing(self):
        self.assertEqual(self.differences(), [])

    def test_each_change_of_one_alone_is_seen(self):
        changes = {
            "heading": ("## 第二", "### 第二"),
            "code": ("run --this", "run --that"),
            "code without a fence": ('{"API":"Clear"}', '{"API":"Close"}'),
            "code in an item": ("call()", "recall()"),
            "code's language": ("```sh", "```js"),
            "code in a cell": ("`one \\| two`", "`one`"),
            "a column": ("| 甲 | 乙 |\n|---|---|\n| `one \\| two` | 文字 |", "| 甲 |\n|---|\n| `one \\| two` |"),
            "a row": ("| `one \\| two` | 文字 |", "| `one \\| two` | 文字 |\n| 三 | 四 |"),
            "code in the text": ("`key`", "`Key`"),
            "a link": ("install.md#第二", "../picture.png"),
            "an anchor": ("#第二", "#第三"),
            "a picture": ("../picture.png", "../other.png"),
        }
        for what, (before, after) in changes.items():
            with self.subTest(what):
                self.assertIn(before, CHINESE)
                self.assertNotEqual(self.differences(chinese=CHINESE.replace(before, after)), [])

    def test_prose_that_changed_is_seen(self):
        self.assertNotEqual(self.differences(stale=True), [])

    def test_accepting_marks_a_translation_as_current(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "one.md").write_text("# Title\n\nText\n", encoding="utf-8")
            (root / "other.md").write_text(f"# 标题\n<!-- translates: one.md {'0' * 16} -->\n\n文字\n", encoding="utf-8")
            pair = Pair("one.md", "other.md", root, {"one.md": "other.md"})
            self.assertEqual(len(pair.differences()), 1)
            accept("one.md", "other.md", root)
            self.assertEqual((root / "other.md").read_text(encoding="utf-8"),
                             "# 标题\n<!-- translates: one.md 594f76ae6a9c8fe6 -->\n\n文字\n")
            self.assertEqual(pair.differences(), [])


ENGLISH_MANUAL = r""".TH NAME 1 "" "name" "User Commands"
.SH OPTIONS
.TP
.BI \-\-host " H"
Host of the service, see
.BR name (7).
.SH EXAMPLES
.nf
name \-\-host here
.fi
"""
CHINESE_MANUAL = r""".\" translates: name.1 DIGEST
.TH NAME 1 "" "name" "用户命令"
.SH 选项
.TP
.BI \-\-host " H"
服务的主机，见
.BR name （7）。
.SH 示例
.nf
name \-\-host here
.fi
"""


class CheckedManuals(unittest.TestCase):
    def differences(self, chinese):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            (root / "name.1").write_text(ENGLISH_MANUAL, encoding="utf-8")
            (root / "name.zh.1").write_text(chinese.replace("DIGEST", digest(root / "name.1")), encoding="utf-8")
            return manual_differences("name.1", "name.zh.1", root)

    def test_equal_pages_differ_in_nothing(self):
        self.assertEqual(self.differences(CHINESE_MANUAL), [])

    def test_each_change_of_one_alone_is_seen(self):
        changes = {"a section": (".SH 示例\n", ""), "an option": (r".BI \-\-host", r".BI \-\-hast"),
                   "its value": ('" H"', '" N"'), "a macro": (".BI", ".BR"), "a paragraph": (".TP\n", ""),
                   "an example": ("host here", "host there"), "the text": ("DIGEST", "0" * 16)}
        for what, (before, after) in changes.items():
            with self.subTest(what):
                self.assertIn(before, CHINESE_MANUAL)
                self.assertNotEqual(self.differences(CHINESE_MANUAL.replace(before, after)), [])


class Documents(unittest.TestCase):
    def test_each_says_what_its_original_says(self):
        for original, translation in PAIRS.items():
            with self.subTest(translation):
                found = Pair(original, translation).differences()
                self.assertEqual(found, [], "\n" + "\n".join(found))

    def test_each_manual_has_the_requests_of_its_original(self):
        for original, translation in MANUALS.items():
            with self.subTest(translation):
                found = manual_differences(original, translation)
                self.assertEqual(found, [], "\n" + "\n".join(found))

    def test_readmes_lead_to_each_other_in_their_first_line(self):
        for one, other in (("README.md", "README.zh-CN.md"), ("README.zh-CN.md", "README.md")):
            self.assertIn(f"]({other})", (ROOT / one).read_text(encoding="utf-8").splitlines()[0])


class Terms(unittest.TestCase):
    """docs/zh/terms.md: a term, its Chinese, and the words that are not used for it."""

    def rows(self):
        lines = (ROOT / "docs/zh/terms.md").read_text(encoding="utf-8").splitlines()
        rows = [cells(line) for line in lines if line.startswith("|")][2:]
        self.assertGreater(len(rows), 20)
        return rows

    def chinese_texts(self):
        paths = [ROOT / name for name in PAIRS.values()]
        paths += [ROOT / "web/demo/texts.js", *sorted((ROOT / "tools").rglob("*.ts")),
                  *(ROOT / name for name in MANUALS.values())]
        return {path: path.read_text(encoding="utf-8") for path in paths}

    def test_no_text_uses_another_word(self):
        avoided = [(row[1], word) for row in self.rows() for word in re.split("[、，]", row[2]) if word]
        self.assertGreater(len(avoided), 10)
        found = [f"{path.relative_to(ROOT)}: “{word}” instead of “{right}”"
                 for path, text in self.chinese_texts().items() for right, word in avoided if word in text]
        self.assertEqual(found, [], "\n" + "\n".join(found))


if __name__ == "__main__":
    unittest.main()
