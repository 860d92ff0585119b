"""A copy of the checkout that is built and changed. It stays for the next hunt, which then starts at once."""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from program import Program

SUITE = re.compile(r'^TEST(?:_F|_P)?\((\w+),', re.MULTILINE)


class Copy:
    """`desktop` are the desktop tests to ask; none where it is empty."""

    def __init__(self, folder, desktop):
        self.folder = folder
        self.build = folder / 'build/release'
        self.note = folder / 'changed'  # names the file that differs from the checkout now
        self.refresh()
        self.configure()
        if not self.make('unit-tests') or not self.mend():
            sys.exit('mutants: the sources do not build as they are')
        self.desktop = desktop
        if desktop and not self.make('all'):
            sys.exit('mutants: the application does not build as it is')
        self.unchanged = self.application()
        self.programs = [Program(line) for line in (self.build / 'unit-tests.txt').read_text().splitlines()]

    def refresh(self):
        """Files that are as they were keep their time, so that only what differs is built."""
        listed = subprocess.run(['git', 'ls-files', '-z', '--cached', '--others', '--exclude-standard'],
                                capture_output=True, text=True, check=True).stdout.split('\0')
        wanted = {pathlib.Path(name) for name in listed if os.path.isfile(name)}
        for file in wanted:
            target = self.folder / file
            if not target.is_file() or target.read_bytes() != file.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(file, target)
                shutil.copymode(file, target)
        for top in {file.parts[0] for file in wanted}:
            for target in list((self.folder / top).rglob('*')):
                if target.is_file() and target.relative_to(self.folder) not in wanted:
                    target.unlink()

    def mend(self):
        """After a hunt that was stopped in the middle, a compiler may have finished building the changed source."""
        if not self.note.exists():
            return True
        (self.folder / self.note.read_text()).touch()
        self.note.unlink()
        return self.make('unit-tests')

    def configure(self):
        linker = '-fuse-ld=lld' if shutil.which('ld.lld') else ''
        options = [f'-DCMAKE_{kind}_LINKER_FLAGS={linker}' for kind in ('EXE', 'MODULE', 'SHARED')]
        subprocess.run(['cmake', '--preset', 'release', *options], cwd=self.folder, stdout=subprocess.DEVNULL, check=True)

    def make(self, target, keep=True):
        """Whether it compiles and links. Only what will be needed again goes into the compiler cache."""
        env = os.environ | {'CCACHE_BASEDIR': str(self.folder), 'CCACHE_NOHASHDIR': '1'}
        if not keep:
            env['CCACHE_READONLY'] = '1'
        return subprocess.run(['ninja', target], cwd=self.build, env=env, capture_output=True).returncode == 0

    def measure(self):
        for program in self.programs:
            failed = program.measure()
            if failed:
                sys.exit(f'mutants: {failed} fails without any change')

    def share(self, other):
        """What the other copy has measured and will learn."""
        for program, same in zip(self.programs, other.programs):
            program.seconds, program.noticed = same.seconds, same.noticed

    def application(self):
        """The program and what it loads."""
        files = [self.build / 'tobrin', *sorted((self.build / 'modules').glob('*.so'))]
        return [file.read_bytes() for file in files if file.exists()]

    def try_change(self, change):
        """Whether any program differs, and who noticed."""
        path = self.folder / change.file
        text = path.read_text()
        self.note.write_text(change.file)
        path.write_text(change.apply(text))
        try:
            differs, noticed = self.ask_units(change.file)
            if self.desktop and not noticed:
                return self.ask_desktop(differs)
            return differs, noticed
        finally:
            path.write_text(text)
            self.note.unlink()

    def ask_units(self, source):
        differs, near = False, self.suites_near(source)
        for program in self.nearest_first(source):
            if not self.make(program.target, keep=False):
                return False, None
            if program.sum() == program.unchanged:
                continue
            differs = True
            failed = program.failure(source, near)
            if failed:
                return True, failed
        return differs, None

    def ask_desktop(self, differs):
        """Each of these tests is a program that runs in a private desktop."""
        if not self.make('all', keep=False):
            return False, None
        if not differs and self.application() == self.unchanged:
            return False, None
        run = subprocess.run(['ctest', '--label-regex', '^desktop$', '--tests-regex', self.desktop, '--stop-on-failure'],
                             cwd=self.build, capture_output=True, text=True)
        failed = re.search(r'Test +#\d+: (\S+) .*\*\*\*', run.stdout)
        return True, failed.group(1) if failed else None

    def nearest_first(self, source):
        """The tests of the changed target are the likeliest to notice; of the others, the quick ones go first."""
        target = pathlib.Path(source).parts[1]
        return sorted(self.programs, key=lambda program: (f'/Tests/{target}/' not in str(program.file),
                                                          sum(program.seconds.values())))

    def suites_near(self, source):
        """Names of the suites in the folder of Tests that mirrors the source's."""
        folder = self.folder / 'Tests' / pathlib.Path(source).parent.relative_to('Sources')
        while not folder.is_dir():
            folder = folder.parent
        return {suite for file in folder.glob('*Tests.cpp') for suite in SUITE.findall(file.read_text())}
