// Hand-kept parts of the HTML schema that the generator merges with the npm data sets:
// attribute data types, the enumerations of the legacy presentational attributes, the HTML 4.01
// element and attribute names (for the "defined in" answers), and short descriptions of the
// legacy tags and attributes that the current data sets no longer describe.

// Schema data types, as the picker numbers them.
export const T = {
  none: 0, enumerated: 1, string: 2, integer: 3, url: 4, color: 5, proportional: 6, integerSet: 7,
  pixels: 8, fontSize: 9, directory: 10, htmlFile: 11, picture: 12, sound: 13, animation: 14,
  javaClass: 15, script: 16, font: 17, guid: 18, styleName: 19, styleClass: 20, scriptFunction: 21,
};

// The elements of HTML 4.01 (strict, transitional and frameset together).
export const html401Elements = `a abbr acronym address applet area b base basefont bdo big blockquote body br
button caption center cite code col colgroup dd del dfn dir div dl dt em fieldset font form frame
frameset h1 h2 h3 h4 h5 h6 head hr html i iframe img input ins isindex kbd label legend li link map
menu meta noframes noscript object ol optgroup option p param pre q s samp script select small span
strike strong style sub sup table tbody td textarea tfoot th thead title tr tt u ul var`.split(/\s+/);

// The attribute names of HTML 4.01; an attribute of an HTML 4.01 element with one of these names
// is attributed to HTML 4.01 unless the current standard still defines it.
export const html401Attributes = `abbr accept-charset accept accesskey action align alink alt archive axis
background bgcolor border cellpadding cellspacing char charoff charset checked cite class classid clear
code codebase codetype color cols colspan compact content coords data datetime declare defer dir
disabled enctype face for frame frameborder headers height href hreflang hspace http-equiv id ismap
label lang language link longdesc marginheight marginwidth maxlength media method multiple name nohref
noresize noshade nowrap object onblur onchange onclick ondblclick onfocus onkeydown onkeypress onkeyup
onload onmousedown onmousemove onmouseout onmouseover onmouseup onreset onselect onsubmit onunload
profile prompt readonly rel rev rows rowspan rules scheme scope scrolling selected shape size span src
standby start style summary tabindex target text title type usemap valign value valuetype version
vlink vspace width`.split(/\s+/);

// Types by attribute name; an entry of tag-specific types overrides it. Attributes found in
// neither table are strings, or enumerations and flags where the data sets give a value set.
export const typeByName = {
  bgcolor: T.color, color: T.color, text: T.color, link: T.color, alink: T.color, vlink: T.color,
  bordercolor: T.color, bordercolorlight: T.color, bordercolordark: T.color,
  href: T.url, action: T.url, cite: T.url, longdesc: T.url, usemap: T.url, profile: T.url,
  formaction: T.url, manifest: T.url, ping: T.url, data: T.url, archive: T.url, itemtype: T.url,
  src: T.url, srcset: T.string, codebase: T.directory, background: T.picture, poster: T.picture,
  lowsrc: T.picture, dynsrc: T.animation, classid: T.guid, code: T.javaClass,
  width: T.pixels, height: T.pixels, border: T.pixels, cellpadding: T.pixels, cellspacing: T.pixels,
  hspace: T.pixels, vspace: T.pixels, marginwidth: T.pixels, marginheight: T.pixels,
  leftmargin: T.pixels, topmargin: T.pixels, rightmargin: T.pixels, bottommargin: T.pixels,
  charoff: T.pixels, face: T.font,
  tabindex: T.integer, colspan: T.integer, rowspan: T.integer, maxlength: T.integer,
  minlength: T.integer, start: T.integer, span: T.integer, rows: T.integer, cols: T.integer,
  size: T.integer, coords: T.integerSet, style: T.styleName, class: T.styleClass,
  scrollamount: T.integer, scrolldelay: T.integer, loop: T.integer,
};

export const typeByTag = {
  img: { src: T.picture }, input: { src: T.picture }, image: { src: T.picture },
  frame: { src: T.htmlFile }, iframe: { src: T.htmlFile },
  bgsound: { src: T.sound }, audio: { src: T.sound, loop: T.none }, video: { src: T.animation, loop: T.none },
  font: { size: T.fontSize }, basefont: { size: T.fontSize }, hr: { size: T.pixels },
  frameset: { rows: T.integerSet, cols: T.integerSet }, col: { width: T.proportional },
  colgroup: { width: T.proportional }, li: { value: T.integer }, applet: { code: T.javaClass },
  object: { data: T.url }, a: { href: T.htmlFile }, area: { href: T.htmlFile },
  meter: { value: T.string }, progress: { value: T.string },
};

// Enumerations of attributes that the current data sets do not list, or list differently.
export const valueSets = {
  halign: ['left', 'center', 'right'],
  halignJustify: ['left', 'center', 'right', 'justify'],
  imgAlign: ['top', 'middle', 'bottom', 'left', 'right', 'absmiddle', 'absbottom', 'baseline', 'texttop'],
  cellAlign: ['left', 'center', 'right', 'justify', 'char'],
  captionAlign: ['top', 'bottom', 'left', 'right'],
  legendAlign: ['top', 'bottom', 'left', 'right'],
  valign: ['top', 'middle', 'bottom', 'baseline'],
  clear: ['left', 'right', 'all', 'none'],
  scrolling: ['yes', 'no', 'auto'],
  frame: ['void', 'above', 'below', 'hsides', 'lhs', 'rhs', 'vsides', 'box', 'border'],
  rules: ['none', 'groups', 'rows', 'cols', 'all'],
  ulType: ['disc', 'square', 'circle'],
  liType: ['disc', 'square', 'circle', '1', 'a', 'A', 'i', 'I'],
  valuetype: ['data', 'ref', 'object'],
  frameborder: ['0', '1', 'yes', 'no'],
  direction: ['left', 'right', 'up', 'down'],
  behavior: ['scroll', 'slide', 'alternate'],
  scope4: ['row', 'col', 'rowgroup', 'colgroup'],
  shape4: ['rect', 'circle', 'poly', 'default'],
  scriptLanguage: ['JavaScript', 'JScript', 'VBScript'],
};

// tag -> attribute -> value set, for the legacy enumerations; "*" for any tag.
export const enumByTag = {
  '*': { align: 'halignJustify', valign: 'valign' },
  img: { align: 'imgAlign' }, applet: { align: 'imgAlign' }, iframe: { align: 'imgAlign', frameborder: 'frameborder', scrolling: 'scrolling' },
  object: { align: 'imgAlign', valuetype: 'valuetype' }, input: { align: 'imgAlign' }, embed: { align: 'imgAlign' },
  table: { align: 'halign', frame: 'frame', rules: 'rules' }, hr: { align: 'halign' },
  td: { align: 'cellAlign' }, th: { align: 'cellAlign' }, tr: { align: 'cellAlign' },
  tbody: { align: 'cellAlign' }, thead: { align: 'cellAlign' }, tfoot: { align: 'cellAlign' },
  col: { align: 'cellAlign' }, colgroup: { align: 'cellAlign' },
  caption: { align: 'captionAlign' }, legend: { align: 'legendAlign' },
  br: { clear: 'clear' }, frame: { scrolling: 'scrolling', frameborder: 'frameborder' },
  frameset: { frameborder: 'frameborder' },
  ul: { type: 'ulType' }, li: { type: 'liType' }, param: { valuetype: 'valuetype' },
  marquee: { direction: 'direction', behavior: 'behavior' },
  script: { language: 'scriptLanguage' },
};

// Flags of HTML 4.01 and of vendors that the current data sets do not mark as such.
export const legacyFlags = ['nowrap', 'noshade', 'compact', 'ismap', 'declare', 'nohref', 'noresize',
  'checked', 'disabled', 'selected', 'readonly', 'multiple', 'defer', 'mayscript', 'truespeed'];

// Value sets of the data sets whose lists are examples rather than a closed set: any value is
// accepted, and a listed one is shown as such.
export const openValueSets = ['target', 'sb', 'inputautocomplete', 'autocomplete', 'roles', 'metanames',
  'relevant', 'dropeffect', 'et', 'scriptLanguage', 'im'];

// Attributes of vendor tags that no data set lists.
// Attributes of XML that XHTML pages and inline SVG and MathML carry; every element takes them.
export const xmlAttributes = {
  'xml:lang': "The language of the element's content, as XML says it; in HTML the lang attribute says the same.",
  'xml:space': "Whether white space in the element's content is kept as written (preserve) or not (default).",
  'xml:base': 'The base URL of the relative URLs inside the element, as XML says it.',
  xmlns: 'The namespace of the element: http://www.w3.org/1999/xhtml for XHTML, http://www.w3.org/2000/svg for SVG, http://www.w3.org/1998/Math/MathML for MathML.',
  'xmlns:xlink': 'Binds the xlink prefix to http://www.w3.org/1999/xlink, for xlink:href.',
};

// The attributes of RDFa 1.1, which no maintained data set lists; every element takes them.
export const rdfaAttributes = {
  about: 'The subject that the statements of the element are about, as a URL or compact URI (RDFa).',
  content: 'A plain value for the property of the element, in place of its text (RDFa).',
  datatype: 'The data type of the value of the property, such as xsd:date (RDFa).',
  inlist: 'Collects the values of the property into an ordered list (RDFa).',
  prefix: 'Binds prefixes of compact URIs to URLs for the element and its content, as "dc: http://purl.org/dc/terms/" (RDFa).',
  property: 'The properties, as compact URIs, that the element gives a value for (RDFa).',
  rel: 'The relations, as compact URIs, from the subject to the resource of the element (RDFa).',
  resource: 'The resource, as a URL or compact URI, that the relations of the element point at (RDFa).',
  rev: 'The relations, as compact URIs, from the resource of the element back to the subject (RDFa).',
  typeof: 'The types, as compact URIs, of a new resource that the element describes (RDFa).',
  vocab: 'The vocabulary whose terms the properties and types inside the element are taken from (RDFa).',
};

export const extraAttributes = {
  bgsound: ['src', 'loop', 'balance', 'volume'],
  spacer: ['type', 'size', 'width', 'height', 'align'],
  multicol: ['cols', 'gutter', 'width'],
};

export const tagDescriptions = {
  acronym: 'Marks an acronym; the current standard uses abbr instead.',
  applet: 'Embeds a Java applet; replaced by object.',
  basefont: 'Sets the base font size, colour and face for the text of the document.',
  bgsound: 'Plays a background sound while the page is open (a vendor extension).',
  big: 'Renders its text one font size larger.',
  blink: 'Makes its text blink (a vendor extension).',
  center: 'Centres its content horizontally.',
  command: 'A command that the user can invoke; dropped from the standard.',
  content: 'An insertion point in a shadow tree; replaced by slot.',
  dir: 'A directory list; the current standard uses ul instead.',
  element: 'Defined a custom element in an early draft of web components.',
  font: 'Sets the size, colour and face of the font of its text.',
  frame: 'One frame of a frameset: a window that shows another document.',
  frameset: 'Divides the window into frames, in rows or columns, in place of a body.',
  image: 'An old spelling of img that parsers still accept.',
  isindex: 'A single-line prompt for a search of the document.',
  keygen: 'A form control that generated a key pair; dropped from the standard.',
  listing: 'Preformatted text in which markup is not interpreted; replaced by pre.',
  marquee: 'Scrolls its content across the page (a vendor extension).',
  math: 'The root of a MathML formula embedded in the page.',
  menuitem: 'A command of a popup menu; dropped from the standard.',
  multicol: 'Lays its content out in several columns (a vendor extension).',
  nextid: 'Gave the next free identifier for generated anchors in early HTML.',
  nobr: 'Keeps its text on one line (a vendor extension).',
  noembed: 'Content for browsers that do not support embed.',
  noframes: 'Content for browsers that do not show frames.',
  plaintext: 'Shows the rest of the document as plain text.',
  rbc: 'A container of ruby base text in complex ruby markup.',
  rtc: 'A container of ruby annotation text.',
  shadow: 'An insertion point for an older shadow root; dropped from the standard.',
  spacer: 'Inserts blank space of a given size (a vendor extension).',
  strike: 'Renders its text struck through; the current standard uses s or del.',
  svg: 'The root of an embedded SVG drawing.',
  tt: 'Renders its text in a teletype (monospace) font.',
  xmp: 'Preformatted text in which markup is not interpreted; replaced by pre.',
  param: 'A named parameter of an object or applet.',
  rb: 'The base text of a ruby annotation.',
};

export const attrDescriptions = {
  balance: 'Balance of the sound between the left and right speakers (a vendor extension).',
  volume: 'Volume of the sound (a vendor extension).',
  gutter: 'Space in pixels between the columns (a vendor extension).',
  'bgsound.loop': 'How often the sound is played; -1 or infinite plays it without end.',
  role: 'The ARIA role of the element, for assistive technology.',
  onformchange: 'Script run when a control of the form changes (dropped from the standard).',
  onforminput: 'Script run when a control of the form gets input (dropped from the standard).',
  onmousewheel: 'Script run when the mouse wheel turns over the element (a vendor extension).',
  onpagehide: 'Script run when the page is hidden, as when the user navigates away.',
  onpageshow: 'Script run when the page is shown, also from the history cache.',
  coords: 'Coordinates of the shape of the area, in pixels.',
  shape: 'The shape of the area: rect, circle, poly or default.',
  mediagroup: 'Groups media elements that share a controller (dropped from the standard).',
  command: 'The command that the button runs on the element named by commandfor.',
  commandfor: 'The id of the element that the command of the button acts on.',
  closedby: 'Which user actions close the dialog.',
  seamless: 'Renders the frame as part of the page (dropped from the standard).',
  allowusermedia: 'Allows the frame to use cameras and microphones (dropped from the standard).',
  checked: 'Marks the check box or radio button as selected.',
  dirname: 'Name of an extra form field that submits the direction of the text.',
  list: 'The id of a datalist with suggested values.',
  pattern: 'A regular expression that the value must match.',
  step: 'The granularity of allowed values.',
  alpha: 'Allows a colour with transparency in a colour control.',
  colorspace: 'The colour space of the value of a colour control.',
  blocking: 'Operations that the loading of the resource blocks, such as render.',
  imagesizes: 'Sizes of the image candidates of a preloaded responsive image.',
  imagesrcset: 'Image candidates of a preloaded responsive image.',
  scoped: 'Applies the style sheet to the parent element only (dropped from the standard).',
  colspan: 'The number of columns that the cell spans.',
  rowspan: 'The number of rows that the cell spans.',
  shadowrootclonable: 'Makes the declarative shadow root clonable.',
  shadowrootcustomelementregistry: 'Gives the declarative shadow root its own custom element registry.',
  shadowrootdelegatesfocus: 'Makes the declarative shadow root delegate focus.',
  shadowrootmode: 'Creates a declarative shadow root: open or closed.',
  shadowrootserializable: 'Makes the declarative shadow root serializable.',
  sorted: 'Marks the column of the header cell as sorted.',
  poster: 'A picture shown until the video plays.',
  playsinline: 'Plays the video inline instead of full screen.',
  align: 'Horizontal (or, for embedded objects, vertical) alignment of the element.',
  valign: 'Vertical alignment of the content of the cell or row.',
  bgcolor: 'Background colour of the element.',
  background: 'Picture tiled behind the content of the element.',
  text: 'Colour of the text of the document.',
  link: 'Colour of links that have not been visited.',
  alink: 'Colour of a link while it is being activated.',
  vlink: 'Colour of links that have been visited.',
  color: 'Colour of the text or of the rule.',
  face: 'Comma-separated list of font names to render the text with.',
  size: 'Size of the element; for fonts a size from 1 to 7, or relative with + or -.',
  border: 'Width of the border in pixels.',
  bordercolor: 'Colour of the border.',
  bordercolorlight: 'Colour of the light side of a 3D border (a vendor extension).',
  bordercolordark: 'Colour of the dark side of a 3D border (a vendor extension).',
  cellpadding: 'Space in pixels between the border of a cell and its content.',
  cellspacing: 'Space in pixels between the cells of the table.',
  width: 'Width of the element, in pixels or as a percentage.',
  height: 'Height of the element, in pixels or as a percentage.',
  hspace: 'Space in pixels to the left and right of the element.',
  vspace: 'Space in pixels above and below the element.',
  nowrap: 'Turns off automatic wrapping of the text of the cell.',
  noshade: 'Draws the rule as a solid bar without shading.',
  compact: 'Renders the list in a more compact way.',
  clear: 'Moves the line break below floating pictures on the given side.',
  char: 'The character that cells are aligned on.',
  charoff: 'Offset of the first alignment character in the cell.',
  axis: 'Categories that the header cell belongs to.',
  abbr: 'A short form of the content of the header cell.',
  scope: 'The cells that the header cell applies to.',
  frame: 'Which sides of the outer border of the table are drawn.',
  rules: 'Which rules between cells of the table are drawn.',
  summary: 'A summary of the purpose and structure of the table.',
  frameborder: 'Whether a border is drawn around the frame.',
  marginwidth: 'Margin in pixels to the left and right of the content of the frame.',
  marginheight: 'Margin in pixels above and below the content of the frame.',
  leftmargin: 'Left margin of the page in pixels (a vendor extension).',
  topmargin: 'Top margin of the page in pixels (a vendor extension).',
  rightmargin: 'Right margin of the page in pixels (a vendor extension).',
  bottommargin: 'Bottom margin of the page in pixels (a vendor extension).',
  scrolling: 'Whether the frame shows scroll bars.',
  noresize: 'Keeps the user from resizing the frame.',
  rows: 'The number of lines, or for a frameset the heights of its rows.',
  cols: 'The number of columns, or for a frameset the widths of its columns.',
  longdesc: 'URL of a long description of the element.',
  classid: 'Identifier of the implementation of the object, such as a class identifier.',
  codebase: 'Base URL against which the object or applet code is resolved.',
  codetype: 'Content type of the code of the object.',
  archive: 'Archives that hold resources of the object or applet.',
  code: 'The class file of the applet.',
  declare: 'Declares the object without instantiating it.',
  standby: 'Message shown while the object loads.',
  valuetype: 'How the value of the parameter is to be read.',
  language: 'The scripting language of the script.',
  version: 'The version of HTML that the document conforms to.',
  profile: 'URL of a metadata profile of the document.',
  scheme: 'Scheme in which the metadata value is to be read.',
  rev: 'Reverse relationship of the linked document to this one.',
  charset: 'Character encoding of the linked resource.',
  nohref: 'Marks an area of an image map as having no link.',
  prompt: 'The prompt of a search field.',
  type: 'The type of the element or of its content.',
  start: 'The number of the first item of the list.',
  value: 'The value of the element.',
  name: 'The name of the element.',
  direction: 'Direction in which the marquee scrolls.',
  behavior: 'How the marquee text moves.',
  scrollamount: 'Distance in pixels the marquee moves per step.',
  scrolldelay: 'Delay in milliseconds between steps of the marquee.',
  loop: 'How often the sound, video or marquee is repeated.',
  truespeed: 'Keeps the marquee from enforcing a minimum delay.',
  lowsrc: 'A small picture shown while the full picture loads (a vendor extension).',
  dynsrc: 'A video clip shown in place of the picture (a vendor extension).',
  mayscript: 'Allows the applet to call scripts of the page.',
  datafld: 'Column of a data source bound to the element (a vendor extension).',
  datasrc: 'Data source bound to the element (a vendor extension).',
  dataformatas: 'Whether bound data is rendered as text or HTML (a vendor extension).',
  datapagesize: 'Number of records shown per page of a bound table (a vendor extension).',
  event: 'The event that triggers the script (a vendor extension).',
  for: 'The element that the label or script is for.',
  urn: 'A uniform resource name of the linked document.',
  methods: 'Methods that the linked resource supports.',
  nonce: 'A cryptographic nonce that allows the element under a content security policy.',
  hreflang: 'Language of the linked resource.',
  media: 'The media that the resource applies to.',
  accept: 'Content types that the control accepts.',
  'accept-charset': 'Character encodings that the server accepts for the form.',
  alt: 'Text shown in place of the picture.',
  ismap: 'Marks the picture as a server-side image map.',
  usemap: 'The client-side image map of the picture.',
  target: 'The frame or window in which the link opens.',
  'http-equiv': 'HTTP header that the metadata stands for.',
  object: 'The object that the applet is read from.',
  datetime: 'Date and time of the change.',
  label: 'A label of the element.',
  headers: 'The header cells that apply to the cell.',
  span: 'The number of columns that the element spans.',
  exportparts: 'Exports parts of a nested shadow tree under the given names.',
  writingsuggestions: 'Whether the browser may offer writing suggestions.',
  autocorrect: 'Whether the browser corrects spelling as the user types.',
  part: 'Names of the shadow parts that the element stands for.',
  slot: 'The slot of a shadow tree that the element goes into.',
  is: 'The name of the customised built-in element to use.',
  popover: 'Makes the element a popover.',
  inert: 'Makes the element and its content inert: it takes no input and is skipped by search.',
  autocapitalize: 'Whether and how text typed into the element is capitalised.',
};
