#!/usr/bin/env python3
"""Every text of panel and tray is in every translation, and nothing else: translations_test.py SOURCES"""

import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree as xml

SOURCES = pathlib.Path(sys.argv.pop())
TEXT = r'\(\s*"((?:[^"\\]|\\.)*)"'
# Of the platform's words those that the panel shows.
PLATFORM = re.compile(r"\.(needsKeyAccess|keyAccessTitle|keyAccessButton|keyAccessNote|forceNeedsSensor|reservedShortcut) =((?:\s*\"[^\"]*\")+)")


def texts(folder, ending, function, context):
    for file in (SOURCES / folder).rglob("*" + ending):
        for text in re.findall(r"\b" + function + TEXT, file.read_text(encoding="utf-8")):
            yield context(file), text


def wanted():
    platform = (SOURCES / "TobrinLinux/Desktop/LinuxWords.cpp").read_text(encoding="utf-8")
    return {*texts("Tobrin/Panel", ".qml", "qsTr", lambda file: file.stem),
            *texts("Tobrin", ".cpp", "tr", lambda file: "tobrin::" + file.stem),
            *texts("Tobrin/Model", ".cpp", "translate_?", lambda file: "sentences"),
            *(("sentences", "".join(re.findall('"([^"]*)"', words))) for _, words in PLATFORM.findall(platform))}


class TranslationsTest(unittest.TestCase):
    def test_each_is_complete(self):
        files = [*(SOURCES / "Tobrin/Translations").glob("*.ts")]
        self.assertTrue(files)
        for file in files:
            found = {(context.findtext("name"), message.findtext("source")): message.findtext("translation")
                     for context in xml.parse(file).iter("context") for message in context.iter("message")}
            self.assertEqual(set(found) ^ wanted(), set(), file.name)
            for (_, english), translation in found.items():
                self.assertEqual(sorted(re.findall("%[0-9]", english)), sorted(re.findall("%[0-9]", translation)), english)


if __name__ == "__main__":
    unittest.main()
