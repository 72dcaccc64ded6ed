#!/usr/bin/python3
"""Makes the manual's page for the browser: make_manual.py MANUAL.md FOLDER. The pictures beside MANUAL.md go with it."""
import pathlib
import re
import shutil
import sys

import markdown

PAGE = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title><style>
:root {{ color-scheme: light dark; --text: #1b1d20; --page: #ffffff; --line: #d5d8dc; --card: #f4f5f7; --accent: #0b6cb8; }}
@media (prefers-color-scheme: dark) {{
  :root {{ --text: #e4e6e9; --page: #17191c; --line: #3a3d42; --card: #212428; --accent: #6db7f2; }}
}}
body {{ margin: 0; background: var(--page); color: var(--text); font: 16px/1.55 Inter, system-ui, sans-serif; }}
body > div {{ display: flex; max-width: 1200px; margin: 0 auto; }}
nav {{ position: sticky; top: 0; flex: 0 0 250px; height: 100vh; overflow-y: auto; padding: 24px 16px; box-sizing: border-box; }}
nav ul {{ list-style: none; margin: 0; padding-left: 12px; }}
nav > .toc > ul {{ padding-left: 0; }}
nav a {{ display: block; padding: 3px 0; text-decoration: none; }}
main {{ flex: 1; min-width: 0; max-width: 860px; padding: 8px 24px 80px; }}
a {{ color: var(--accent); }}
h1, h2, h3 {{ line-height: 1.25; font-weight: 600; scroll-margin-top: 16px; }}
h2 {{ margin-top: 48px; padding-top: 16px; border-top: 1px solid var(--line); }}
table {{ border-collapse: collapse; margin: 16px 0; }}
th, td {{ border: 1px solid var(--line); padding: 6px 12px; text-align: left; vertical-align: top; }}
th {{ background: var(--card); font-weight: 600; }}
code {{ background: var(--card); border-radius: 4px; padding: 1px 5px; font-size: 0.92em; }}
img {{ max-width: 100%; border: 1px solid var(--line); border-radius: 8px; }}
@media (max-width: 800px) {{ body > div {{ display: block; }} nav {{ position: static; height: auto; }} }}
</style></head><body><div>
<nav aria-label="Contents">{contents}</nav>
<main>{body}</main>
</div></body></html>
"""


def main() -> int:
    source, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    text = source.read_text(encoding="utf-8")
    # A list that begins right behind a line of text is one all the same.
    text = re.sub(r"(?m)^((?![-*|\d#>\s]).+)\n(?=(?:- |1\. ))", r"\1\n\n", text)
    converter = markdown.Markdown(
        extensions=["tables", "toc", "sane_lists", "smarty"],
        extension_configs={"toc": {"toc_depth": "2-3"}, "smarty": {"smart_quotes": False, "smart_ellipses": False}})
    body = converter.convert(text)
    title = text.splitlines()[0].lstrip("# ")
    folder.mkdir(parents=True, exist_ok=True)
    shutil.copytree(source.parent / "pictures", folder / "pictures", dirs_exist_ok=True)
    (folder / "Zentrova.html").write_text(PAGE.format(title=title, contents=converter.toc, body=body), encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main())
