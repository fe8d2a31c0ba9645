"""Every relative link and picture of the project's pages leads to a file, and to a heading where it names one."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = sorted([*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *ROOT.glob("data/*.md")])
FENCED = re.compile(r"^```.*?^```", re.MULTILINE | re.DOTALL)
CODE = re.compile(r"`[^`\n]*`")
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]*)\)")


def anchors(page):
    """As the places that show Markdown on the web make them."""
    headings = re.findall(r"^#+ +(.*)$", FENCED.sub("", page.read_text()), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


class Links(unittest.TestCase):
    def test_each_leads_somewhere_and_each_picture_has_words(self):
        links = 0
        for page in PAGES:
            for picture, words, address in LINK.findall(CODE.sub("", FENCED.sub("", page.read_text()))):
                if address.startswith("https:"):
                    continue
                links += 1
                with self.subTest(page=page.name, link=address):
                    file, _, anchor = address.partition("#")
                    target = (page.parent / file).resolve() if file else page
                    self.assertTrue(target.exists())
                    self.assertTrue(target.is_relative_to(ROOT))
                    if anchor:
                        self.assertIn(anchor, anchors(target))
                    if picture:
                        self.assertTrue(words.strip())
        self.assertGreater(links, 20)

    def test_each_picture_is_used_and_small(self):
        used = {address for page in PAGES for _, _, address in LINK.findall(page.read_text())}
        for picture in (ROOT / "docs" / "images").iterdir():
            with self.subTest(picture=picture.name):
                self.assertTrue(any(address.endswith("images/" + picture.name) for address in used))
                self.assertLess(picture.stat().st_size, 90_000)


if __name__ == "__main__":
    unittest.main()
