"""What doxygen leaves to do: links from code in the guide to the reference, the index of the search, and the check."""
import html
import html.parser
import json
import re
import urllib.parse
import xml.etree.ElementTree as tree

import pages

LOG_TEXTS = 'log-texts.md'
# Common words that are classes as well: doxygen makes a link of each that begins a sentence.
WORDS = 'Nothing|Scalar|InPlace|Owned|List|Map|Object'


def symbols(tags):
    """From the name of a documented symbol, as text writes it, to its address; and what the search shall find."""
    addresses, entries = {}, []
    root = tree.parse(tags).getroot()
    classes = {compound.findtext('name'): compound.findtext('filename') for compound in root.findall('compound')}
    for compound in root.findall('compound'):
        kind, name, file = (compound.get('kind'), compound.findtext('name'), compound.findtext('filename') or '')
        if kind == 'file' and compound.find('class') is not None:
            path = compound.findtext('path').split('/headers/')[1]
            addresses[f'header:{path}{name}'] = classes[compound.findtext('class')]
        if kind not in ('class', 'struct', 'namespace'):
            continue
        if not file.endswith('.html'):
            file += '.html'
        short = name.removeprefix('zqxml::')
        if kind != 'namespace':
            addresses.setdefault(short, file)
            entries.append([short, kind, file])
        for member in compound.findall('member'):
            own, at = member.findtext('name'), f'{member.findtext("anchorfile")}#{member.findtext("anchor")}'
            if own.startswith('~') or own.startswith('operator') or not member.findtext('anchor'):
                continue
            full = own if name == 'zqxml' else f'{short}::{own}'
            if full not in addresses:
                addresses[full] = at
                entries.append([full, member.get('kind'), at])
    return addresses, entries


class Sections(html.parser.HTMLParser):
    """The sections of a page of the guide: heading, anchor and the words in it."""

    def __init__(self, title, file):
        super().__init__()
        self.found = [[title, file, []]]
        self.file, self.anchor, self.heading, self.depth, self.skipped = file, None, None, 0, False

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag == 'div' and attributes.get('class') == 'contents':
            self.depth = 1
        elif tag == 'div' and self.depth:
            self.depth += 1
            self.skipped |= attributes.get('class', '').startswith('toc')
        elif tag == 'a' and self.depth and 'id' in attributes:
            self.anchor = attributes['id']
        elif tag in ('h1', 'h2', 'h3') and self.depth and not self.skipped:
            self.heading = ''

    def handle_endtag(self, tag):
        if tag == 'div' and self.depth:
            self.depth -= 1
            self.skipped = False
        elif tag in ('h1', 'h2', 'h3') and self.heading is not None:
            self.found.append([self.heading.strip(), f'{self.file}#{self.anchor}', []])
            self.heading = None

    def handle_data(self, data):
        if self.heading is not None:
            self.heading += data
        elif self.depth and not self.skipped:
            self.found[-1][2].append(data)


DETAILS = re.compile(r'<a name="details" id="details"></a><h2 class="groupheader">Detailed Description</h2>\n'
                     r'(.*?)(?=<h2 class="groupheader">|<hr/>The documentation|</div><!-- contents -->)', re.S)
BRIEF = re.compile(r'<p>(?:(?!</p>).)*?<a href="[^"]*#details">More\.\.\.</a></p>', re.S)


def begin_with_description(text):
    """The whole description of a class or file stands before its members."""
    found = DETAILS.search(text)
    if not found or not BRIEF.search(text):
        return text
    text = text[:found.start()] + text[found.end():]
    return BRIEF.sub(lambda brief: '<a id="details"></a>' + found[1], text, count=1)


def drop_empty_places(text):
    """The line of places under the title names nested classes even when all of them are private."""
    def keep(link):
        return link[0] if re.search(rf'(id|name)="{link[1]}"', text) else ''
    return re.sub(r'<a href="#([\w-]+)">[^<]*</a> &#124;\n', keep, text)


LOG_LINE = re.compile(r'<tr class="markdownTableRow(?:Odd|Even)">\n<td class="markdownTableBodyNone"><code>(.*?)</code>'
                      r'.*?(?=</tr>)', re.S)


def mark_log_lines(path):
    """Gives each line of the index of log texts a place, and the search an entry for it."""
    text, entries = path.read_text(encoding='utf-8'), []

    def mark(row):
        words = re.sub(r'\s+', ' ', html.unescape(re.sub(r'<[^>]*>', ' ', row[0]))).strip()
        title = html.unescape(re.sub(r'<[^>]*>', '', row[1]))
        entries.append([title, 'log line', f'{path.name}#line-{len(entries) + 1}', words.removeprefix(title).strip()])
        return row[0].replace('<tr ', f'<tr id="line-{len(entries)}" ', 1)

    path.write_text(LOG_LINE.sub(mark, text), encoding='utf-8')
    return entries


def finish_page(path, addresses, is_guide):
    """Marks the page in the navigation, and ends what needs doxygen's scripts or links to the wrong place."""
    text = path.read_text(encoding='utf-8')
    text = text.replace(f'<li><a href="{path.name}">', f'<li><a href="{path.name}" aria-current="page">', 1)
    text = text.replace('<div class="header">', '<main id="main">\n<div class="header">', 1)
    if '<main' not in text:
        text = text.replace('<div class="contents">', '<main id="main">\n<div class="contents">', 1)
    text = text.replace('<footer>', '</main>\n<footer>', 1)
    text = drop_empty_places(begin_with_description(text))
    text = re.sub(r'<div class="title">([^<]*?) (Class|Struct|Namespace|File|Concept)( Template)? Reference',
                  lambda match: f'<div class="title">{match[1]} <small>{match[2].lower()}</small>', text)
    # Folders have pages whose names hold the path of the build; the list of headers says all that they say.
    text = re.sub(r'<a class="el" href="dir_[^"]*"[^>]*>(.*?)</a>', r'\1', text)
    text = re.sub(r'<img src="closed\.png"[^>]*>\s*(?:&#160;)?', '', text)
    text = re.sub(r' onclick="[^"]*"', '', text)
    text = re.sub(r'<a class="anchor" id="md_[^"]*"></a>\s*', '', text).replace('<p ></p>', '')  # has the path of the build
    text = re.sub(r'<script type="text/javascript">.*?</script>', '', text, flags=re.S)
    if path.name != 'annotated.html':
        text = re.sub(rf'(?<!"bottom">)<a class="el" href="structzqxml_1_1({WORDS})\.html"[^>]*>\1</a>', r'\1', text)
    # Tables and code may be wider than a phone: a box of their own scrolls.
    text = re.sub(r'<table class="(markdownTable|doxtable|fieldtable)">', r'<div class="wide"><table class="\1">', text)
    text = re.sub(r'(<div class="wide">.*?</table>)', r'\1</div>', text, flags=re.S)
    if not is_guide:
        text = re.sub(r'(?<![\w/">])docs/([a-z-]+)\.md', lambda match: f'<a class="el" href="{pages.name_of(match[1])}.html">'
                      f'{match[0]}</a>', text)
    else:
        text = re.sub(r'"(header:[^"]*)"', lambda match: f'"{addresses[match[1]]}"', text)

        def link(match):
            address = addresses.get(html.unescape(match[1]).removesuffix('()'))
            return f'<a class="el" href="{address}">{match[0]}</a>' if address else match[0]
        parts = re.split(r'(<a [^>]*>.*?</a>)', text, flags=re.S)
        text = ''.join(part if i % 2 else re.sub(r'<code>([^<]+)</code>', link, part) for i, part in enumerate(parts))
    path.write_text(text, encoding='utf-8')


def write_search_index(folder, guide, entries):
    """search_index.js: [title, kind, address, words]; the words of a guide's section, in small letters."""
    sections = []
    for page in [guide.front, *guide.order]:
        parser = Sections('Start' if page is guide.front else page.title, page.name + '.html')
        parser.feed((folder / (page.name + '.html')).read_text(encoding='utf-8'))
        if page.path.name == LOG_TEXTS:
            entries = entries + mark_log_lines(folder / (page.name + '.html'))
            parser.found = [[heading, address, []] for heading, address, _ in parser.found]
        for heading, address, words in parser.found:
            kind = 'guide' if heading == page.title else f'in {page.title}'
            sections.append([heading, kind, address, re.sub(r'\s+', ' ', ' '.join(words)).strip()])
    data = json.dumps(sections + entries, ensure_ascii=False, separators=(',', ':'))
    (folder / 'search_index.js').write_text(f'window.searchIndex = {data};\n', encoding='utf-8')
    return len(sections), len(entries)


class References(html.parser.HTMLParser):
    """The anchors of a page, and what it refers to."""

    def __init__(self):
        super().__init__()
        self.anchors, self.links, self.resources = set(), [], []

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.anchors.update(attributes[key] for key in ('id', 'name') if attributes.get(key))
        if 'href' in attributes:
            (self.resources if tag == 'link' else self.links).append(attributes['href'])
        if 'src' in attributes:
            self.resources.append(attributes['src'])


def check(folder):
    """The dead links of the site, a line each, and what is fetched from elsewhere."""
    pages, problems = {}, []
    for path in sorted(folder.glob('*.html')):
        pages[path.name] = References()
        pages[path.name].feed(path.read_text(encoding='utf-8'))
    for name, page in pages.items():
        for target in page.links + page.resources:
            parts = urllib.parse.urlsplit(target)
            if parts.scheme or parts.netloc:
                if target in page.resources:
                    problems.append(f'{name}: fetches {target}')
                continue
            file = urllib.parse.unquote(parts.path) or name
            if not (folder / file).is_file():
                problems.append(f'{name}: {target} leads nowhere')
            elif parts.fragment and file in pages and urllib.parse.unquote(parts.fragment) not in pages[file].anchors:
                problems.append(f'{name}: {file} has no place {parts.fragment}')
    for path in [*folder.glob('*.css'), *folder.glob('*.js')]:
        if path.name != 'search_index.js' and re.search(r'url\(|@import|https?://', path.read_text(encoding='utf-8')):
            problems.append(f'{path.name}: fetches something')
    return problems


def remove_unused(folder):
    """Removes what no way leads to from the front page, and gives the number of pages that are left."""
    reached, new = set(), ['index.html', 'search_index.js']
    while new:
        name = new.pop()
        path = folder / name
        if name in reached or not path.is_file():
            continue
        reached.add(name)
        if path.suffix == '.html':
            page = References()
            page.feed(path.read_text(encoding='utf-8'))
            new += [urllib.parse.unquote(urllib.parse.urlsplit(target).path) for target in page.links + page.resources]
    for path in folder.iterdir():
        if path.name not in reached and path.is_file():
            path.unlink()
    return sum(name.endswith('.html') for name in reached)
