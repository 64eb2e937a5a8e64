#!/usr/bin/env python3
"""What a stranger gets: the Debian packages, and programs that are built from them.

  packages_test.py PACKAGES BUILD   the packages in the folder PACKAGES, unpacked; BUILD is the build that they were made of
  packages_test.py --installed      the installed packages of this machine: the programs alone

--results FILE writes one <testcase name= status="run"> for each test, with another status when it failed, as ctest does.
"""
import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as tree

ROOT = pathlib.Path(__file__).resolve().parents[2]
HERE = ROOT / 'tests' / 'consumer'
OUTPUT = '''<?xml version="1.0" encoding="UTF-8" standalone="no" ?><ZQGui_SaveAlert alertLocation="/srv/alerts" \
impersonateUser="0" loginName="operator" password="" useNetworkShare="1" zqpassword=""/>
57 bytes
operator
'''

# Each package: what each of its files has to match, and what has to match one; and the packages it depends on, by name.
LIBRARY = r'usr/lib/[a-z0-9_]+-linux-gnu/'
CONTENTS = {
    'libzqxmlmsgsbase0': [LIBRARY + r'libZqXMLMsgsBase\.so\.0', LIBRARY + r'libZqXMLMsgsBase\.so\.[0-9.]+'],
    'libzqxmlmsgsbase-common': [r'usr/share/locale/de/LC_MESSAGES/zqxml\.mo', r'usr/share/locale/en/LC_MESSAGES/zqxml\.mo',
                                r'usr/share/locale/[^/]+/LC_MESSAGES/zqxml\.mo'],
    'libzqxmlmsgsbase-dev': [LIBRARY + r'libZqXMLMsgsBase\.so', LIBRARY + r'pkgconfig/zqxmlmsgsbase\.pc',
                             LIBRARY + r'libzqmsg_commands\.a',
                             r'usr/share/gdb/auto-load/' + LIBRARY + r'libZqXMLMsgsBase\.so\.[0-9.]+-gdb\.py',
                             LIBRARY + r'cmake/ZqXMLMsgsBase/ZqXMLMsgsBaseConfig\.cmake',
                             LIBRARY + r'cmake/ZqXMLMsgsBase/ZqxmlCatalogue\.cmake',
                             LIBRARY + r'cmake/ZqXMLMsgsBase/[^/]+\.cmake',
                             r'usr/include/zqxml/zqxml\.h', r'usr/include/zqxml/catalogue/generated/ZQGui\.h',
                             r'usr/include/zqxml/(?!.*/internal/).+\.(h|def)', r'usr/share/zqxml/schema/ZQGui\.xml',
                             r'usr/share/zqxml/schema/catalogue\.xsd', r'usr/share/zqxml/schema/[^/]+\.xml'],
    'zqxml-tools': [r'usr/bin/zqcatc', r'usr/bin/zqmsg'],
    'libzqxmlmsgsbase-doc': [r'usr/share/doc/libzqxmlmsgsbase-doc/README\.md',
                             r'usr/share/doc/libzqxmlmsgsbase-doc/docs/architecture\.md',
                             r'usr/share/doc/libzqxmlmsgsbase-doc/examples/round_trip\.cc'],
}
# What a package may have as well.
MORE = {
    'zqxml-tools': [r'usr/share/man/man\d/.+\.gz', r'usr/share/bash-completion/completions/.+'],
    'libzqxmlmsgsbase-doc': [r'usr/share/doc/libzqxmlmsgsbase-doc/.+'],
}
C = {'libc6', 'libgcc-s1', 'libstdc++6'}
DEPENDS = {
    'libzqxmlmsgsbase0': C | {'libzqxmlmsgsbase-common', 'libicu72', 'libinih1', 'liblzma5', 'libspdlog1.10-fmt9', 'libssl3',
                              'libxerces-c3.2'},
    'libzqxmlmsgsbase-common': set(),
    'libzqxmlmsgsbase-dev': {'libzqxmlmsgsbase0', 'libxerces-c-dev', 'zqxml-tools'},
    'zqxml-tools': C | {'libzqxmlmsgsbase0', 'libssl3', 'libxerces-c3.2'},
    'libzqxmlmsgsbase-doc': set(),
}
SAME_VERSION = {'libzqxmlmsgsbase-dev': ['libzqxmlmsgsbase0', 'zqxml-tools'], 'zqxml-tools': ['libzqxmlmsgsbase0']}
ARCHITECTURES = {'libzqxmlmsgsbase0': 'same', 'libzqxmlmsgsbase-dev': 'same', 'zqxml-tools': 'foreign'}

arguments = None
scratch = None


def run(*command, **options):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **options)
    if result.returncode != 0:
        raise AssertionError(f'{command} failed:\n{result.stdout}')
    return result.stdout


class Unpacked:
    """The packages, unpacked into one root each and into one of all."""

    def __init__(self, folder):
        self.root = scratch / 'root'
        self.files = {path.name.split('_')[0]: path for path in sorted(folder.glob('*.deb'))}
        self.control = {}
        for name, path in self.files.items():
            run('dpkg-deb', '-x', str(path), str(self.root))
            run('dpkg-deb', '-R', str(path), str(scratch / name))
            self.control[name] = dict(re.findall(r'^(\S+): (.*)$', (scratch / name / 'DEBIAN/control').read_text(), re.M))
        # As /lib is on a Debian of today.
        (self.root / 'lib').symlink_to('usr/lib')

    def contents(self, name):
        """Mode, owner and path of each entry."""
        for line in run('dpkg-deb', '-c', str(self.files[name])).splitlines():
            mode, owner, _, _, _, path = line.split(None, 5)
            yield mode, owner, path.split(' -> ')[0].removeprefix('./')

    def paths(self, name):
        return {path for mode, _, path in self.contents(name) if mode[0] != 'd'}


class Packages(unittest.TestCase):
    """The packages themselves. `unpacked` is set before the tests run."""
    unpacked = None

    def test_There_is_one_of_each_kind(self):
        self.assertEqual(sorted(self.unpacked.files), sorted(CONTENTS))

    def test_Each_has_its_files_and_no_other(self):
        for name in CONTENTS:
            with self.subTest(package=name):
                own = {path for path in self.unpacked.paths(name)
                       if path not in (f'usr/share/doc/{name}/copyright', f'usr/share/doc/{name}/changelog.gz',
                                       f'usr/share/lintian/overrides/{name}')}
                for pattern in CONTENTS[name]:
                    self.assertTrue(any(re.fullmatch(pattern, path) for path in own), f'nothing is {pattern}')
                known = CONTENTS[name] + MORE.get(name, [])
                self.assertEqual([path for path in sorted(own) if not any(re.fullmatch(p, path) for p in known)], [])

    def test_Together_they_have_all_that_is_installed(self):
        prefix = scratch / 'installed'
        run('cmake', '--install', str(arguments.build), '--prefix', str(prefix))
        installed = {f'usr/{path.relative_to(prefix)}' for path in prefix.rglob('*') if path.is_symlink() or path.is_file()}
        packed = set().union(*(self.unpacked.paths(name) for name in self.unpacked.files))
        # Pages of manuals are compressed in packages.
        self.assertEqual(sorted(path for path in installed if path not in packed and path + '.gz' not in packed), [])

    def test_A_tree_below_any_folder_works_as_well(self):
        prefix = scratch / 'below'
        run('cmake', '--install', str(arguments.build), '--prefix', str(prefix))
        self.assertIn('Anmeldename', run(str(prefix / 'bin/zqmsg'), 'summary', '--html', '--locale', '1031',
                                         str(ROOT / 'examples/save_alert.xml')))
        pc, = prefix.glob('lib/*/pkgconfig')
        include, library = run('pkg-config', '--cflags-only-I', '--libs-only-L', 'zqxmlmsgsbase',
                               env={**os.environ, 'PKG_CONFIG_PATH': str(pc)}).split()
        self.assertTrue((pathlib.Path(include.removeprefix('-I')) / 'zqxml/zqxml.h').is_file(), include)
        self.assertTrue((pathlib.Path(library.removeprefix('-L')) / 'libZqXMLMsgsBase.so').is_file(), library)

    def test_Each_declares_what_it_depends_on(self):
        for name in CONTENTS:
            with self.subTest(package=name):
                control = self.unpacked.control[name]
                declared = dict(re.findall(r'([^ ,]+)(?: \(([^)]*)\))?', control.get('Depends', '')))
                self.assertEqual(set(declared), DEPENDS[name])
                for other in SAME_VERSION.get(name, []):
                    self.assertEqual(declared[other], '= ' + control['Version'])

    def test_Each_says_who_and_what_it_is(self):
        native = run('dpkg', '--print-architecture').strip()
        version = re.search(r'VERSION ([0-9.]+)', (ROOT / 'CMakeLists.txt').read_text().split('project(')[1])[1]
        for name in CONTENTS:
            with self.subTest(package=name):
                control = self.unpacked.control[name]
                self.assertEqual(control['Version'], version)
                self.assertEqual(control['Architecture'], native if name in ARCHITECTURES else 'all')
                self.assertEqual(control['Multi-Arch'], ARCHITECTURES.get(name, 'foreign'))
                self.assertRegex(control['Maintainer'], r'.+ <.+@.+>')
                self.assertLessEqual(len(control['Description']), 80)
                for file in ('copyright', 'changelog.gz'):
                    self.assertTrue((scratch / name / 'usr/share/doc' / name / file).is_file(), file)

    def test_Files_belong_to_root_and_nobody_else_writes_them(self):
        for name in CONTENTS:
            with self.subTest(package=name):
                for mode, owner, path in self.unpacked.contents(name):
                    runs = mode[0] == 'd' or path.startswith('usr/bin/')
                    expected = 'lrwxrwxrwx' if mode[0] == 'l' else mode[0] + ('rwxr-xr-x' if runs else 'rw-r--r--')
                    self.assertEqual((mode, owner), (expected, 'root/root'), path)

    def test_Programs_and_libraries_are_stripped_and_know_no_folder(self):
        elves = [*self.unpacked.root.glob('usr/bin/*'), *self.unpacked.root.glob('usr/lib/*/*.so.*.*')]
        self.assertEqual(len(elves), 3)
        for elf in elves:
            told = run('readelf', '-W', '-d', '-S', str(elf))
            self.assertNotIn('.symtab', told)
            self.assertNotIn('.debug_', told)
            self.assertNotRegex(told, 'RPATH|RUNPATH')

    def test_The_library_tells_its_name_to_the_loader_and_to_other_packages(self):
        library, = self.unpacked.root.glob('usr/lib/*/libZqXMLMsgsBase.so.*.*')
        soname = re.search(r'soname: \[(.*)\]', run('readelf', '-d', str(library)))[1]
        self.assertEqual(soname.lower().replace('.so.', ''), 'libzqxmlmsgsbase0')
        self.assertEqual((library.parent / soname).resolve(), library)
        control = scratch / 'libzqxmlmsgsbase0' / 'DEBIAN'
        self.assertEqual((control / 'triggers').read_text(), 'activate-noawait ldconfig\n')
        self.assertRegex((control / 'shlibs').read_text(), r'^libZqXMLMsgsBase 0 libzqxmlmsgsbase0 \(>= [0-9.]+\)\n$')

    def test_Builds_are_asked_for_Xerces_and_for_nothing_else(self):
        development = scratch / 'libzqxmlmsgsbase-dev'
        pc, = development.glob('usr/lib/*/pkgconfig/*.pc')
        self.assertEqual(re.findall(r'^(?:prefix|Requires|Libs).*', pc.read_text(), re.M),
                         ['prefix=/usr', 'Requires: xerces-c >= 3.2', 'Libs: -L${libdir} -lZqXMLMsgsBase'])
        folder, = development.glob('usr/lib/*/cmake/ZqXMLMsgsBase')
        text = ''.join(path.read_text() for path in folder.glob('*.cmake'))
        self.assertEqual(re.findall(r'^ *find_(?:dependency|package)\((\S+)', text, re.M), ['XercesC'])
        self.assertEqual(re.findall(r'INTERFACE_LINK_LIBRARIES "(.*)"', text), ['XercesC::XercesC'])

    def test_The_same_tree_gives_the_same_bytes(self):
        again = scratch / 'again'
        run('cpack', '--config', str(arguments.build / 'CPackConfig.cmake'), '-B', str(again),
            env={**os.environ, 'TZ': 'Asia/Tokyo', 'LC_ALL': 'C'}, umask=0o077)
        for name, path in self.unpacked.files.items():
            self.assertEqual((again / path.name).read_bytes(), path.read_bytes(), name)


def blocks_of_readme(language):
    return re.findall(rf'^```{language}\n(.*?)^```$', (ROOT / 'README.md').read_text(), re.M | re.S)


class Programs(unittest.TestCase):
    """Programs of others. `root` is the folder of unpacked packages, or None for what is installed."""
    root = None

    def setUp(self):
        self.folder = scratch / self.id().split('.')[-1]
        self.folder.mkdir()
        shutil.copy(ROOT / 'examples' / 'round_trip.cc', self.folder)
        self.environment = {**os.environ, 'CXX': 'g++', 'LC_ALL': 'C.UTF-8', 'ZQXML_CONFIG': '/dev/null'}
        if self.root:
            library, = self.root.glob('usr/lib/*-linux-gnu')
            self.environment |= {
                'CPATH': f'{self.root}/usr/include', 'LIBRARY_PATH': str(library), 'LD_LIBRARY_PATH': str(library),
                'PKG_CONFIG_PATH': f'{library}/pkgconfig', 'PKG_CONFIG_SYSROOT_DIR': str(self.root),
                'CMAKE_PREFIX_PATH': str(self.root),
                'PATH': f'{self.root}/usr/bin:{os.environ["PATH"]}'}

    def run_here(self, command):
        return run('/bin/bash', '-euc', command, cwd=self.folder, env=self.environment)

    def command_of_readme(self, beginning, with_part=''):
        command, = [line for block in blocks_of_readme('bash') for line in block.splitlines()
                    if line.startswith(beginning) and with_part in line and ('$(' in line) == ('$(' in with_part)]
        return command

    def test_The_compiler_alone_builds_the_program_of_the_readme(self):
        self.run_here(self.command_of_readme('g++'))
        self.assertEqual(self.run_here('./round_trip'), OUTPUT)

    def test_The_compiler_builds_it_with_pkg_config(self):
        self.run_here(self.command_of_readme('g++', '$(pkg-config'))
        self.assertEqual(self.run_here('./round_trip'), OUTPUT)

    def build_project_of_readme(self):
        project, = blocks_of_readme('cmake')
        (self.folder / 'CMakeLists.txt').write_text(project)
        self.run_here(self.command_of_readme('cmake -B'))
        self.assertEqual(self.run_here('build/round_trip'), OUTPUT)
        return project

    def test_CMake_builds_it_with_the_one_target(self):
        project = self.build_project_of_readme()
        self.assertEqual(re.findall(r'\w+::\w+', project), ['ZqXMLMsgsBase::ZqXMLMsgsBase'])

    def test_CMake_finds_the_package_behind_a_build_on_the_path(self):
        build = (arguments.build or ROOT / 'build-release').resolve()
        self.environment['PATH'] = f'{build}/bin:{self.environment["PATH"]}'
        self.environment.pop('CMAKE_PREFIX_PATH', None)
        self.build_project_of_readme()

    def test_A_project_takes_every_header_and_adds_messages_of_its_own(self):
        self.run_here(f'cmake -S {HERE} -B build -G Ninja && cmake --build build')
        self.assertIn('consumer: good', self.run_here('build/consumer'))
        self.assertIn('good', self.run_here('build/depot'))

    def test_The_tools_run_and_find_the_texts_of_labels(self):
        self.run_here('zqcatc --version && zqmsg --version')
        alert = ROOT / 'examples' / 'save_alert.xml'
        german, english = (self.run_here(f'zqmsg summary --html --locale {locale} {alert}') for locale in (1031, 1033))
        self.assertIn('Anmeldename', german)
        self.assertNotIn('Anmeldename', english)


class Results(unittest.TextTestResult):
    """Remembers which test failed, once for each."""

    def __init__(self, *given):
        super().__init__(*given)
        self.names = []

    def startTest(self, test):
        super().startTest(test)
        self.names.append(test.id().split('.')[-1].removeprefix('test_'))

    def write(self, file):
        bad = {(getattr(test, 'test_case', test)).id().split('.')[-1].removeprefix('test_')
               for test, _ in [*self.failures, *self.errors, *self.skipped]}
        suite = tree.Element('testsuite')
        for name in self.names:
            tree.SubElement(suite, 'testcase', name=name, status='fail' if name in bad else 'run')
        tree.ElementTree(suite).write(file)


def main():
    global arguments, scratch
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('packages', nargs='?', type=pathlib.Path)
    parser.add_argument('build', nargs='?', type=pathlib.Path)
    parser.add_argument('--installed', action='store_true')
    parser.add_argument('--results', type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.installed != (arguments.build is None):
        parser.error('either PACKAGES and BUILD or --installed')
    with tempfile.TemporaryDirectory() as folder:
        scratch = pathlib.Path(folder)
        suites = [unittest.defaultTestLoader.loadTestsFromTestCase(Programs)]
        if not arguments.installed:
            Packages.unpacked = Unpacked(arguments.packages)
            Programs.root = Packages.unpacked.root
            suites.insert(0, unittest.defaultTestLoader.loadTestsFromTestCase(Packages))
        result = unittest.TextTestRunner(verbosity=2, resultclass=Results).run(unittest.TestSuite(suites))
    if arguments.results:
        result.write(arguments.results)
    return 0 if result.wasSuccessful() else 1


if __name__ == '__main__':
    sys.exit(main())
