#!/usr/bin/env python3
"""The parts of the site's building, and that it sees what is wrong."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import finish  # noqa: E402
import headers  # noqa: E402
import pages  # noqa: E402


class Scratch(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.addCleanup(self.scratch.cleanup)
        self.root = pathlib.Path(self.scratch.name).resolve()

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding='utf-8')


class GuideTest(Scratch):
    def guide(self, **texts):
        for name in ('README', 'CONTRIBUTING', 'SECURITY'):
            self.write(f'{name}.md', texts.get(name, f'# {name}\n'))
        for name in ('one', 'two', 'three'):
            self.write(f'docs/{name}.md', texts.get(name, f'# The {name}\n\n## Part `a-b` (c)\n'))
        return pages.Guide(self.root)

    def converted(self, text):
        guide = self.guide(two=text)
        return guide.convert(guide.pages[self.root / 'docs/two.md'])

    def test_pages_stand_in_the_order_of_the_front_page(self):
        guide = self.guide(README='# Top\n[3](docs/three.md) [c](CONTRIBUTING.md) [3](docs/three.md)\n[1](docs/one.md)\n')
        self.assertEqual([page.name for page in guide.order],
                         ['guide_three', 'guide_contributing', 'guide_one', 'guide_two', 'guide_security'])

    def test_links_lead_to_pages_and_headings(self):
        text = self.converted('# T\n[x](one.md) and [y](one.md#part-a-b-c), [one.md](one.md), [top](../README.md)\n')
        self.assertIn('[x](@ref guide_one) and [y](@ref guide_one_part-a-b-c), [The one](@ref guide_one), [top](@ref mainpage)',
                      text)

    def test_links_to_nothing_are_errors(self):
        for link in ('[x](none.md)', '[x](one.md#none)', '![x](none.png)', '[x](#none)'):
            with self.assertRaises(pages.SiteError, msg=link):
                self.converted(f'# T\n{link}\n')

    def test_code_stays_as_it_is(self):
        self.assertIn('```text\n[x](none.md)\n# no heading\n%s\n```', self.converted(
            '# T\n```text\n[x](none.md)\n# no heading\n%s\n```\n'))
        self.assertIn('`%%s`', self.converted('# T\nA `%s`.\n'))

    def test_a_page_without_a_title_is_an_error(self):
        with self.assertRaises(pages.SiteError):
            self.guide(one='text\n')


class HeaderTest(unittest.TestCase):
    def expanded(self, text):
        return '\n'.join(headers.expand(text.split('\n')))

    def test_the_comment_of_a_group_stands_before_each_declaration(self):
        self.assertEqual(self.expanded('/// @{\n/// Doc.\nint a();\nint b(int x,\n      int y) {\n  return x;\n}\n/// @}\nint c();'),
                         '/// Doc.\nint a();\n/// Doc.\nint b(int x,\n      int y) {\n  return x;\n}\nint c();')

    def test_a_comment_of_its_own_comes_first(self):
        self.assertEqual(self.expanded('/// @{\n/// Doc.\nint a();\n/// Own.\nint b();\nint c;  ///< Own.\n/// @}'),
                         '/// Doc.\nint a();\n/// Own.\nint b();\nint c;  ///< Own.')

    def test_a_declaration_behind_a_group_gets_nothing(self):
        self.assertEqual(self.expanded('/// @{\n/// Doc.\nint a();\n/// @}\nint b();'), '/// Doc.\nint a();\nint b();')

    def test_groups_with_a_name_stay(self):
        text = '/// @name Name\n/// Text.\n/// @{\n\n/// Doc.\nint a();\n/// @}'
        self.assertEqual(self.expanded(text), text)


class CheckTest(Scratch):
    def problems(self, page, **files):
        self.write('index.html', page)
        for name, text in files.items():
            self.write(name.replace('_', '.'), text)
        return finish.check(self.root)

    def test_good_links_are_no_problem(self):
        self.assertEqual(self.problems('<a href="b.html#x">b</a><a href="#y"></a><p id="y"><a href="https://a.example">e</a>',
                                       b_html='<a name="x"></a>'), [])

    def test_dead_links_are_told(self):
        self.assertEqual(len(self.problems('<a href="c.html">c</a>')), 1)
        self.assertEqual(len(self.problems('<a href="b.html#z">b</a>', b_html='<p id="x">')), 1)
        self.assertEqual(len(self.problems('<a href="#z">b</a>', b_html='')), 1)
        self.assertEqual(len(self.problems('<img src="c.png">', b_html='')), 1)

    def test_what_is_fetched_from_elsewhere_is_told(self):
        self.assertEqual(len(self.problems('<script src="https://a.example/x.js"></script>')), 1)
        self.assertEqual(len(self.problems('<link rel="stylesheet" href="//a.example/x.css">')), 1)
        self.assertEqual(len(self.problems('', x_css='p { background: url(https://a.example/x.png) }')), 1)

    def test_what_nothing_leads_to_is_removed(self):
        self.problems('<a href="b.html">b</a>', b_html='<img src="x.png">', x_png='', y_png='', c_html='')
        self.assertEqual(finish.remove_unused(self.root), 2)
        self.assertEqual({path.name for path in self.root.iterdir()}, {'index.html', 'b.html', 'x.png'})


class BuildTest(Scratch):
    """The whole of it, over a source with a header and a few pages."""

    def build(self, header):
        for name in ('README', 'CONTRIBUTING', 'SECURITY', 'docs/guide'):
            self.write(f'{name}.md', f'# {name}\n\nSee `zqxml::shown` and `shown()`.\n')
        shutil.copytree(pathlib.Path(__file__).parent, self.root / 'docs/site')
        self.write('docs/images/x.png', '')
        self.write('zqxml/a.h', '/// @file\n/// A.\n///\n/// @namespace zqxml\n/// All.\n/// @namespace zqxml::catalogue\n'
                   f'/// It.\nnamespace zqxml {{\n/// A class.\nclass Made {{}};\n{header}\n}}\n'
                   'namespace zqxml::catalogue { /** Doc. */ int x(); }\n')
        return self.run_build()

    def run_build(self):
        return subprocess.run([sys.executable, str(self.root / 'docs/site/build_site.py'), '--source', str(self.root),
                               '--out', str(self.root / 'out')], capture_output=True, text=True, check=False)

    def test_what_is_documented_is_built_and_linked(self):
        done = self.build('/// Shown.\nint shown();')
        self.assertEqual((done.returncode, done.stderr), (0, ''))
        page = (self.root / 'out/html/guide_guide.html').read_text(encoding='utf-8')
        self.assertRegex(page, r'<code><a class="el" href="namespacezqxml.html#\w+" title="Shown.">shown\(\)</a></code>')
        self.assertNotIn(str(self.root), page)
        self.assertIn('["shown","function",', (self.root / 'out/html/search_index.js').read_text(encoding='utf-8'))
        self.assertEqual(self.run_build().returncode, 0)

    def test_a_declaration_without_documentation_fails(self):
        done = self.build('int shown();')
        self.assertEqual(done.returncode, 1)
        self.assertIn('shown() (function) of namespace zqxml is not documented', done.stderr)

    def test_an_unknown_reference_fails(self):
        self.assertEqual(self.build('/// Shown, see @ref nowhere.\nint shown();').returncode, 1)

    def test_a_folder_with_something_else_stays_as_it_is(self):
        self.write('out/mine.txt', 'mine')
        self.assertEqual(self.build('/// Shown.\nint shown();').returncode, 1)
        self.assertEqual([path.name for path in (self.root / 'out').iterdir()], ['mine.txt'])


if __name__ == '__main__':
    unittest.main()
