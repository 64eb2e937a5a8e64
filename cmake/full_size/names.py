"""Names like those of a large product: few words, put together in many ways."""
from schema_model import name_hash

WORDS = '''access account action active agent alert app archive array attribute audit backup band base batch block browse bucket
buffer cache calendar capacity catalog category chain change channel charge check chunk client cloud cluster code column command
comment compliance config connection content control copy count counter credential criteria cursor cycle data database date day
default delta deploy destination detail device diagram directory disk domain drive duration edge email encryption end engine
entity entry error event exchange expiry export extent failover family farm feature field file filter flag folder format forest
frame free frequency function gateway global grant granularity group growth handle header health history holder host hour icon
identity image import index info input instance interval inventory item iteration job journal key kind label language last layer
layout lease level library license limit link list local location lock log login mailbox master media member memory merge message
metadata method migration minute mode model module monitor mount name network node note notification object offset operation
option order organization origin owner package page pair parent part partition password path pattern peer period permission phase
plan platform plugin point policy pool port position prefix priority process product profile progress property protocol provider
proxy purge quarter query queue quota range rank ratio reader reason record recovery recycle reference region registry relation
release remote repair replica report request reserve resource response restore result retention retry role rotation route rule
sample scale scan schedule scope score script sector security segment selection sequence server service session setting share
shard sheet signature site size slot snapshot software sort source space span spool stage stamp standby start state statistic
status step storage stream string subject suffix summary support survey switch sync system table tag tape target task team template
tenant threshold ticket time timeout token topic topology total trace track trail transfer transport tree trigger tunnel type unit
update upload usage user value vault vendor version view virtual volume wait warning watch weekday window worker workflow
workload wrapper writer zone'''.split()
VERBS = 'Get Set Add Delete Update List Find Check Run Stop Start Move Copy Create Modify Assign Browse Import Export'.split()
ENDINGS = 'Req Resp Info Request Response Details List Options Entity Config Settings Data Item Result Summary'.split()
COMMON = '''id name type flags status count size description guid enabled createdTime modifiedTime errorCode errorString clientId
clientName userId userName jobId path version priority startTime endTime isDefault policyId policyName total entityType message
hostName instanceId subclientId locale items options value'''.split()
TAILS = ['Id', 'Name', 'Type', 'Count', 'Size', 'Time', 'Flags', 'Path', 'Info', 'List', 'Status', 'Guid', '', '', '', '']


class Names:
    """Gives names; all answers follow from the random numbers."""

    def __init__(self, random):
        self.random = random

    def _capital(self):
        # A few words are in most names.
        return WORDS[int(len(WORDS) * self.random.random() ** 1.6)].capitalize()

    def of_class(self, subsystem, is_enumeration, may_have_hash_as_id):
        """A name that no class of the subsystem has; it is the subsystem's from now on."""
        while True:
            name = self._capital() + ''.join(self._capital() for _ in range(self.random.choice((0, 1, 1, 2))))
            if is_enumeration:
                name += self.random.choice(('Type', 'Status', 'Mode', 'Flags', 'Level', 'Kind'))
            else:
                name = self.random.choice(['', *VERBS]) + name + self.random.choice(ENDINGS)
            identity = name_hash(name)
            if name in subsystem.class_names or identity in subsystem.ids or identity == 0:
                continue
            subsystem.class_names.add(name)
            if may_have_hash_as_id:
                subsystem.ids.add(identity)
            return name

    def _field(self):
        if self.random.random() < 0.35:
            return self.random.choice(COMMON)
        words = [self._capital() for _ in range(self.random.choice((1, 1, 2, 2, 3)))]
        name = ''.join(words) + self.random.choice(TAILS)
        return name[0].lower() + name[1:]

    def of_field(self, taken, hashes):
        """A name that is none of `taken`, and its hash none of `hashes`; both get it."""
        while True:
            name = self._field()
            identity = name_hash(name)
            if name in taken or identity in hashes or identity == 0:
                continue
            taken.add(name)
            hashes.add(identity)
            return name

    def of_enumerators(self, count):
        prefix = self._capital().upper()
        names = {}
        while len(names) < count:
            words = [self._capital().upper() for _ in range(self.random.choice((1, 1, 2) if count < 200 else (2, 2, 3)))]
            names['_'.join([prefix, *words])] = None
        return list(names)
