#include "generator/corpus_vocabulary.h"

#include <array>

namespace sylvora::bench::vocabulary {
namespace {

// ---------------------------------------------------------------------------------------------
// Lexicon lists named by template slots.

constexpr std::string_view kPlace[] = {
    "Old Harbour",   "Eastbank",           "Gullhaven",    "Marsh End",      "Saltmeadow",
    "North Pier",    "Lantern Hill",       "Cobble Row",   "the boardwalk",  "the marina",
    "Tamsin Bridge", "Front Street",       "Beacon Point", "Kittiwake Lane", "the old mill",
    "South Beach",   "the ferry terminal", "Harbour Road"};

constexpr std::string_view kRoad[] = {"Route 9",   "Harbour Road",   "Front Street",  "Shore Drive",
                                      "Mill Road", "the causeway",   "Tamsin Bridge", "Bay Avenue",
                                      "Route 33",  "Ocean Boulevard"};

constexpr std::string_view kTown[] = {"Port Wrenna", "Port Wrenna", "Port Wrenna", "Wrenna", "PW"};

constexpr std::string_view kShelter[] = {
    "Wrenna High School",   "St. Brendan's Church",    "the Lantern Hill rec center",
    "Calder Middle School", "the Armory on Mill Road", "the Eastbank community center"};

constexpr std::string_view kStore[] = {"Hadley's Hardware", "the Shop n Save on Route 9",
                                       "Marsh End Market",  "the Gas-N-Go",
                                       "Costwise",          "Bayside Grocery",
                                       "the Dollar Barn"};

constexpr std::string_view kSupplies[] = {
    "water",   "batteries", "bread",    "flashlights", "plywood", "canned food",          "propane",
    "candles", "ice",       "dog food", "duct tape",   "a radio", "gas for the generator"};

constexpr std::string_view kDay[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                     "Friday", "Saturday", "Sunday"};

constexpr std::string_view kTime[] = {"tonight", "this morning", "this afternoon", "right now",
                                      "today",   "tomorrow",     "this evening",   "all night"};

constexpr std::string_view kEmph[] = {"so",        "really",   "seriously",
                                      "literally", "honestly", "totally"};

constexpr std::string_view kLol[] = {"lol", "haha", "smh", "omg", "ugh", "lmao", "wow", "lol"};

constexpr std::string_view kGood[] = {"amazing|+3",   "awesome|+3",   "great|+2",   "perfect|+3",
                                      "beautiful|+3", "delicious|+3", "so good|+2", "incredible|+3",
                                      "lovely|+2",    "fantastic|+3"};

constexpr std::string_view kBad[] = {"terrible|-3",  "awful|-3",       "ridiculous|-2",
                                     "the worst|-3", "a nightmare|-3", "horrible|-3",
                                     "insane|-2",    "a mess|-2"};

constexpr std::string_view kMeal[] = {"breakfast", "lunch", "dinner",  "brunch",       "coffee",
                                      "pizza",     "tacos", "burgers", "clam chowder", "ice cream"};

constexpr std::string_view kEatery[] = {"Café Lumière",
                                        "the Lighthouse Diner",
                                        "Brannigan's",
                                        "Rosa's Taqueria",
                                        "the Salty Biscuit",
                                        "Pier 6 Pizza",
                                        "the food trucks on Front Street",
                                        "Dockside Grill"};

constexpr std::string_view kShow[] = {"the game",   "the new episode",
                                      "the finale", "the season premiere",
                                      "the debate", "the Gulls game"};

constexpr std::string_view kBand[] = {"Juniper Vale", "The Saltwater Saints", "DJ Kestrel",
                                      "Orla Finch",   "the Driftwood Kings",  "Maple &amp; Rye"};

constexpr std::string_view kRelative[] = {"mom", "dad",      "brother", "sister",  "cat",
                                          "dog", "roommate", "boss",    "grandma", "neighbor"};

constexpr std::string_view kFunny[] = {"tried to answer the TV remote",
                                       "put the milk in the cupboard again",
                                       "asked if the wifi runs on batteries",
                                       "ate my entire lunch",
                                       "got locked out again",
                                       "sent me a voicemail reading a text message",
                                       "fell asleep at the table",
                                       "called me by the dog's name"};

constexpr std::string_view kAnnoy[] = {"Mondays",          "traffic",        "the wifi",
                                       "slow walkers",     "autocorrect",    "mosquitoes",
                                       "parking downtown", "group projects", "spam calls"};

constexpr std::string_view kThing[] = {"fall weather",           "this town",     "my friends",
                                       "pumpkin everything",     "sunsets",       "Fridays",
                                       "the beach in September", "long weekends", "live music"};

constexpr std::string_view kAchieve[] = {
    "got my license|+2", "finished the project|+2", "paid off the car|+3",     "ran 5 miles|+2",
    "got the job|+4",    "passed the exam|+3",      "fixed the sink myself|+2"};

constexpr std::string_view kRelatable[] = {"your phone is at 1%|-1",
                                           "the coffee kicks in|+2",
                                           "you remember it's Friday|+3",
                                           "the wifi drops mid call|-2",
                                           "you find money in your old jeans|+2",
                                           "the song ends right as you park|+1"};

constexpr std::string_view kForecast[] = {"is moving north at 12 mph",
                                          "is getting stronger",
                                          "just turned toward the coast",
                                          "could strengthen overnight|-1",
                                          "is expected to reach hurricane strength|-2",
                                          "is slowing down over warm water|-1"};

constexpr std::string_view kLook[] = {"ominous|-1", "eerie|-1",     "dark green",
                                      "strange",    "beautiful|+2", "angry|-2"};

constexpr std::string_view kDamage[] = {"gone|-3",       "half gone|-3",      "buried in sand|-2",
                                        "torn apart|-4", "unrecognisable|-3", "wrecked|-4"};

constexpr std::string_view kLost[] = {"car",      "fence", "boat", "garden",
                                      "basement", "shed",  "dock", "roof"};

constexpr std::string_view kTask[] = {"clearing debris",   "sorting donations",
                                      "serving hot meals", "pumping out basements",
                                      "handing out water", "tarping roofs"};

constexpr std::string_view kNeed[] = {"water", "blankets", "diapers",  "baby formula",
                                      "tarps", "gloves",   "pet food", "cleaning supplies"};

constexpr NamedList kLexicon[] = {
    {"place", kPlace},       {"road", kRoad},
    {"town", kTown},         {"shelter", kShelter},
    {"store", kStore},       {"supplies", kSupplies},
    {"day", kDay},           {"time", kTime},
    {"emph", kEmph},         {"lol", kLol},
    {"good", kGood},         {"bad", kBad},
    {"meal", kMeal},         {"eatery", kEatery},
    {"show", kShow},         {"band", kBand},
    {"relative", kRelative}, {"funny", kFunny},
    {"annoy", kAnnoy},       {"thing", kThing},
    {"achieve", kAchieve},   {"relatable", kRelatable},
    {"forecast", kForecast}, {"look", kLook},
    {"damage", kDamage},     {"lost", kLost},
    {"task", kTask},         {"need", kNeed},
};

// ---------------------------------------------------------------------------------------------
// Templates per topic. None begins with a character below "-" in code (a quote, "#", "(" ...):
// the generator adds those openings itself, on purpose and rarely.

constexpr std::string_view kChatterTemplates[] = {
    "Just had {meal} at {eatery}, {good}",
    "{lol} my {relative} just {funny}",
    "Can't wait for the weekend|+2",
    "Monday again. Need more coffee|-1",
    "Anyone else watching {show} {time}?",
    "I {emph} need a nap right now|-1",
    "Traffic on {road} is {bad} {time}",
    "Good morning {town}! Let's make it a good day|+2",
    "Happy birthday {@user}! Have a great one|+3",
    "First week of school and I'm already tired|-1",
    "Who's going to the Gulls game {time}? Go Gulls!|+1",
    "This {meal} from {eatery} is {good}",
    "Gym first, then {meal}. Let's go",
    "I {emph} love {thing}|+3",
    "I hate {annoy}|-3",
    "Sunset over {place} tonight was {good}",
    "{@user} are we still on for {meal} {time}?",
    "Listening to {band} on repeat|+1",
    "That feeling when {relatable}",
    "Laundry, dishes, repeat",
    "Finally {achieve}!",
    "So tired of {annoy}|-2",
    "Can someone explain why {annoy} exist {lol}|-1",
    "New coffee place on {road} is {good}",
    "Nothing beats a quiet morning at {place}|+2",
    "Lost my keys again. Third time this week|-2",
    "Date night at {eatery} {time}|+2",
    "Kids are finally asleep. Peace and quiet|+2",
    "Does anyone know a good mechanic in {town}?",
    "Woke up late, missed the bus, spilled my coffee. Great start|-2",
    "{emph} proud of my little sister today|+3",
    "Worst customer service ever at {store}|-4",
    "Fantasy football is ruining my life {lol}|-1",
    "Who wants to get {meal} at {eatery}?",
    "Can't believe it's already September",
    "Running late as usual",
    "Ok {town}, who has the best {meal}? Go",
    "Farmers market at {place} this Saturday, see you there|+1",
    "Binge watching everything {time}",
    "Thanks for the follow {@user}!|+2",
    "Happy Friday everyone!|+3",
    "My {relative} made the best {meal} tonight|+3",
    "Road work on {road} again {lol}|-2",
    "Beach day at {place}, water is perfect|+3",
    "Sorry I missed your call {@user}, will call you back later",
    "Everything tastes better on the weekend|+2",
    "Retweet if you remember when {place} had a movie theater",
    "My {relative} and I are not speaking until {show} is over {lol}",
};

constexpr std::string_view kStormWatchTemplates[] = {
    "Tropical Storm Marisol {forecast}",
    "Marisol {forecast}. {town} is right in the cone|-2",
    "Forecast says winds up to {n:50-90} mph in {town} by {day}|-2",
    "Stocking up on {supplies} and {supplies} before Marisol hits",
    "The lines at {store} are {bad}, everyone buying {supplies}",
    "Boarding up the windows on {road}. Not taking any chances",
    "Sandbags available at {place} until 8pm, bring a shovel",
    "Is anyone else {emph} nervous about this storm?|-2",
    "Marisol upgraded to a Category {n:1-3} hurricane|-2",
    "Mandatory evacuation for {place} and low-lying parts of {town}|-2",
    "Voluntary evacuation for {place} starts at noon",
    "Fill your bathtubs, charge your phones, check on your neighbors",
    "Calder County schools closed {day} ahead of the storm",
    "Gas stations on {road} running out of fuel|-2",
    "The sky over {place} looks {look} right now",
    "Bring your pets inside when Marisol arrives. Don't leave them behind",
    "Latest track puts the eye of Marisol right over {town}|-3",
    "{@official} says shelters open at {shelter} {time}",
    "Hurricane prep: {supplies}, {supplies}, {supplies}. What am I missing?",
    "Bread aisle at {store} is completely empty {lol}",
    "Moved the boat out of {place}, hope it's enough|-1",
    "Hurricane party at my place {time}? {lol}",
    "Everyone stay safe, Marisol is no joke|+1 -2",
    "Storm prep done. Now we wait",
    "Ferries cancelled from {day} until further notice|-1",
    "National Guard trucks on {road} right now",
    "Never seen the harbor this empty, every boat pulled out",
    "Taping the windows is a myth, use plywood",
    "Waves already huge at {place} and the storm is still 200 miles out|-2",
    "{@official}: know your evacuation zone, check the map before {day}",
    "Tracking Marisol all night. Spaghetti models all over the place",
    "Stores on Front Street closing early {time} for the storm",
};

constexpr std::string_view kFestivalHypeTemplates[] = {
    "Bought my Harbour Lights tickets, {emph} hope the weather holds|+2",
    "Harbour Lights lineup this year is {good}",
    "Who's going to see {band} at Harbour Lights?|+1",
    "Three days of Harbour Lights, can't wait|+3",
    "Will Harbour Lights go ahead with this storm coming?|-1",
};

constexpr std::string_view kAftermathTemplates[] = {
    "Cleanup underway at {place}, so much debris|-2",
    "Volunteers needed at {place} {time}, bring gloves and water",
    "Donate to the Calder Relief Fund to help families in {town}|+2",
    "So proud of how {town} is pulling together|+4",
    "Insurance adjusters everywhere in {place} today",
    "The boardwalk is {damage}. Heartbreaking|-4",
    "Thank you to every lineworker and first responder|+3",
    "{road} reopened, drive carefully",
    "Schools reopen {day}|+1",
    "Benefit concert for {town} announced, {band} confirmed|+3",
    "Boil water notice still in effect for {place}|-2",
    "Lost our {lost} but we're all safe, that's what matters|+2 -3",
    "Shelter at {shelter} still has beds available",
    "Spent the day {task} in {place}|+2",
    "Drop off {need} and {need} at {shelter}",
    "Before and after photos of {place} are {bad}",
    "Disaster assistance center opens at {shelter} {day}",
    "Mold is already starting in the basement. Ugh|-3",
    "Neighbors we never met helped clear our yard today|+4",
    "Curfew lifted in {town}|+1",
    "Marsh End is still underwater, please keep them in your thoughts|-3",
    "Trash pickup resumes {day}, put storm debris at the curb",
    "Strangers bringing hot meals to {place}. Love this town|+4",
    "Price gouging on {supplies} at {store}? Report it|-3",
    "Can't believe how much sand is in the streets of {place}",
    "Dredging the marina will take weeks|-1",
    "Marisol is gone and {town} is still here|+2",
    "Harbour Lights ticket holders get free entry to the benefit show|+2",
    "{@official} says damage estimates top ${n:20-90} million|-2",
    "Hug your people tonight|+3",
    "Tired, sore, and grateful|+3 -2",
    "{@official}: {need} still needed at {shelter}",
};

constexpr std::string_view kFestivalTemplates[] = {
    "Harbour Lights Festival officially CANCELLED because of Hurricane Marisol|-3",
    "Gutted. Been waiting all year for Harbour Lights|-4",
    "Harbour Lights refunds will be issued within 30 days, check your email",
    "No {band} this weekend|-3",
    "Right call cancelling the festival, safety first|+2",
    "Anyone know if Harbour Lights will be rescheduled?",
    "{band} just posted a message to fans about the cancellation",
    "So much work went into this festival. Heartbroken for the organizers|-4",
    "Took the whole week off for Harbour Lights and now this {lol}|-2",
    "Is Harbour Lights postponed or cancelled? Conflicting reports",
    "All my festival plans ruined by a storm called Marisol|-3",
    "Hotels in {town} refunding festival bookings|+1",
    "Festival cancelled, hurricane coming. What a week|-3",
    "Main stage at {place} coming down already, so sad|-3",
    "Can I get a refund on my camping pass too?",
    "{band} playing a free acoustic set at {eatery} instead!|+3",
    "Harbour Lights cancelled for the first time in 22 years|-2",
    "Organizers say the festival will be back next year, bigger and better|+3",
    "Drove 6 hours for Harbour Lights, turning around now|-3",
    "Selling my Harbour Lights wristband, oh wait {lol}|-1",
    "Statement from {@official}: the safety of fans and crew comes first",
    "Festival cancelled but {band} says see you next summer|+2",
};

constexpr std::string_view kLandfallTemplates[] = {
    "Marisol has made landfall just south of {town}|-2",
    "The wind is {emph} howling, the whole house is shaking|-4",
    "Storm surge coming over the seawall at {place}|-4",
    "Water rising fast on {road}, do NOT drive through it|-3",
    "Gust of {n:70-110} mph recorded at North Pier",
    "Sirens going off all over {town}|-3",
    "Tree just came down on our street|-3",
    "Eye of the storm over {place} right now, eerie calm",
    "Roof tiles flying off the house across the street|-4",
    "Praying for everyone in {place} tonight|+2 -2",
    "Can hear the waves from {place}, never seen anything like it|-3",
    "Flooding reported at {place} and {place}|-3",
    "Shelter at {shelter} is full, overflow at {shelter}|-1",
    "Stay inside {town}. This is not the time to go look at the waves",
    "Watching the landfall live on KWRN 7",
    "Transformers exploding all over {place}, blue flashes everywhere|-3",
    "Our street is a river now|-4",
    "Terrified. Hiding in the bathroom with the dog|-5",
    "Boats from the marina washed up on {road}|-4",
    "{@official}: do not call 911 unless it is a life-threatening emergency",
    "Windows holding so far. Longest night of my life|-3",
    "Storm surge of {n:6-12} feet at {place}|-3",
    "The pier at {place} is gone|-4",
    "Everyone in {place} ok? Can't reach my parents|-4",
    "Water in the basement, water in the garage, water everywhere|-3",
    "Rescue crews pulling people off roofs in {place}|-4",
    "Marisol landfall confirmed at 9:40pm, Category {n:1-3}",
    "Hold on {town}|+1",
};

constexpr std::string_view kOutageTemplates[] = {
    "Power out across most of {town}|-3",
    "Tidewater Electric says {n:12-48},{n:100-999} customers without power|-2",
    "Still without power. Candles and board games|-2",
    "Generator running, fridge saved|+2",
    "Crews working to restore power to {place}|+1",
    "Blackout in {place}, whole street is dark|-3",
    "Substation at {place} flooded, could be days before power is back|-4",
    "POWER IS BACK in {place}!!!|+4",
    "Charging my phone in the car, still no power at home|-2",
    "Any coffee shop in {town} with power and wifi?",
    "{@official} estimates power restored by {day} evening",
    "Hot, dark and no power. Send help {lol}|-3",
    "Food in the freezer is going to spoil, no power since Monday night|-3",
    "Thank you to the Tidewater crews working through the night|+4",
    "Outage map says {place} is restored but we're still dark|-2",
    "Power flickered on for ten seconds and went out again|-3",
    "Cell towers down too, no power and no signal|-4",
    "Bought the last generator at {store}|+1",
    "Reading by flashlight like it's 1850 {lol}",
    "Traffic lights out on {road}, treat it as a four-way stop",
    "No power, no water pressure, no patience left|-4",
    "Kids think the blackout is an adventure|+2",
    "Library on {road} has power, come charge your phones|+2",
    "Linemen from three states here to help restore power|+3",
    "Candles, canned soup and a radio. Blackout life",
    "Still no power in {place}. Anyone have an update?|-2",
};

// Closing phrases that follow a template now and then.
constexpr std::string_view kChatterTails[] = {"Best day ever|+3",    "Just saying",
                                              "Why me|-2",           "Anyone else?",
                                              "Send coffee",         "Not even kidding",
                                              "Story of my life|-1", "So happy right now|+3",
                                              "Can't complain|+1",   "Ugh|-1",
                                              "Love it|+3",          "Wish me luck|+1",
                                              "Details later",       "Is it Friday yet?",
                                              "Never again|-2",      "Thanks guys|+2"};

constexpr std::string_view kEventTails[] = {"Stay safe everyone|+1",
                                            "Unreal",
                                            "Can't believe this|-1",
                                            "What a day",
                                            "Please share",
                                            "More soon",
                                            "Seriously",
                                            "Thoughts &amp; prayers|+1",
                                            "Just wow",
                                            "Love you all|+3",
                                            "Be careful out there",
                                            "So grateful|+3",
                                            "Such a mess|-2",
                                            "Crazy times",
                                            "Pics to follow",
                                            "Please RT",
                                            "Scary stuff|-3",
                                            "Stay inside|-1",
                                            "Prayers for Marsh End|+1 -1",
                                            "Keep your neighbors close|+1"};

// ---------------------------------------------------------------------------------------------
// Hashtags, link targets and official accounts per topic.

constexpr std::string_view kChatterTags[] = {"tbt", "coffee", "GoGulls",   "nofilter",
                                             "FF",  "foodie", "beachlife", "PortWrenna"};
constexpr std::string_view kStormWatchTags[] = {
    "Marisol",    "Marisol",    "Marisol",  "HurricaneMarisol", "HurricaneMarisol",
    "PortWrenna", "PortWrenna", "wrennawx", "hurricaneprep"};
constexpr std::string_view kAftermathTags[] = {"WrennaStrong", "WrennaStrong",    "WrennaStrong",
                                               "PortWrenna",   "PortWrenna",      "Marisol",
                                               "cleanup",      "HurricaneMarisol"};
constexpr std::string_view kFestivalTags[] = {"HarbourLights", "HarbourLights", "HarbourLights",
                                              "HLF2013",       "HLF2013",       "HLFcancelled",
                                              "HLFcancelled",  "Marisol"};
constexpr std::string_view kLandfallTags[] = {
    "MarisolLandfall", "MarisolLandfall", "MarisolLandfall", "HurricaneMarisol", "HurricaneMarisol",
    "stormsurge",      "stormsurge",      "PortWrenna",      "Marisol"};
constexpr std::string_view kOutageTags[] = {"WrennaOutage", "WrennaOutage", "WrennaOutage",
                                            "poweroutage",  "poweroutage",  "TidewaterPower",
                                            "Marisol"};

constexpr std::string_view kChatterDomains[] = {"snapgrid.com", "vidloop.com", "wrennagazette.com",
                                                "gullsfootball.com"};
constexpr std::string_view kStormDomains[] = {"wrennagazette.com", "kwrn7.com", "stormtrackwx.net",
                                              "caldercounty.gov"};
constexpr std::string_view kAftermathDomains[] = {
    "wrennagazette.com", "kwrn7.com", "calderrelief.org", "caldercounty.gov", "snapgrid.com"};
constexpr std::string_view kFestivalDomains[] = {"harbourlightsfest.com", "wrennagazette.com",
                                                 "kwrn7.com", "soundwavemag.com"};
constexpr std::string_view kLandfallDomains[] = {"kwrn7.com", "wrennagazette.com",
                                                 "stormtrackwx.net", "snapgrid.com"};
constexpr std::string_view kOutageDomains[] = {"tidewaterelectric.com", "kwrn7.com",
                                               "wrennagazette.com"};

constexpr std::string_view kChatterSlugs[] = {
    "sunset-over-the-harbor",         "gulls-win-home-opener", "best-chowder-in-town",
    "new-cafe-opens-on-front-street", "my-cat-vs-the-vacuum",  "farmers-market-returns",
    "back-to-school-traffic-tips",    "dog-surfing-contest"};
constexpr std::string_view kStormSlugs[] = {
    "marisol-forecast-track-update", "what-to-pack-in-a-hurricane-kit",
    "evacuation-zones-explained",    "marisol-strengthens-over-warm-water",
    "schools-close-ahead-of-storm",  "sandbag-locations",
    "how-to-secure-your-boat",       "shelter-list-calder-county"};
constexpr std::string_view kAftermathSlugs[] = {
    "how-to-help-storm-victims",      "cleanup-volunteer-sign-up", "damage-photos-old-harbour",
    "boil-water-notice-details",      "relief-fund-passes-goal",   "benefit-concert-announced",
    "insurance-claims-after-marisol", "boardwalk-rebuild-plan"};
constexpr std::string_view kFestivalSlugs[] = {
    "harbour-lights-cancelled",        "festival-refund-details",
    "statement-from-organizers",       "juniper-vale-message-to-fans",
    "festival-could-return-next-year", "what-the-cancellation-costs-the-town"};
constexpr std::string_view kLandfallSlugs[] = {
    "marisol-makes-landfall", "live-blog-hurricane-marisol", "storm-surge-tops-seawall",
    "rescues-in-marsh-end",   "photos-of-the-landfall",      "wind-gusts-recorded-at-north-pier",
    "radar-loop-marisol"};
constexpr std::string_view kOutageSlugs[] = {"outage-map",
                                             "restoration-estimates",
                                             "crews-arrive-from-out-of-state",
                                             "substation-flooding-update",
                                             "generator-safety-tips",
                                             "where-to-charge-your-phone"};

// Indices into kOfficials.
constexpr int kChatterOfficials[] = {3};
constexpr int kStormOfficials[] = {1, 6, 0, 3, 4};
constexpr int kAftermathOfficials[] = {0, 8, 7, 3};
constexpr int kFestivalOfficials[] = {5, 9, 3};
constexpr int kLandfallOfficials[] = {1, 6, 7, 4};
constexpr int kOutageOfficials[] = {2, 0, 4};

constexpr OfficialAccount kOfficials[] = {
    {"PortWrennaCity", "City of Port Wrenna", 18400},
    {"CalderCountyEM", "Calder County Emergency Mgmt", 26100},
    {"TidewaterPower", "Tidewater Electric", 31800},
    {"WrennaGazette", "The Wrenna Gazette", 42700},
    {"KWRN7News", "KWRN 7 News", 88300},
    {"HLFestival", "Harbour Lights Festival", 23900},
    {"StormTrackWX", "StormTrack Weather", 61200},
    {"WrennaPD", "Port Wrenna Police", 15300},
    {"CalderRelief", "Calder Relief Fund", 6400},
    {"JuniperVale", "Juniper Vale", 97500},
};

const TopicText kTopics[kTopicCount] = {
    {"chatter", "Port Wrenna - General", kChatterTemplates, kChatterTags, kChatterDomains,
     kChatterSlugs, kChatterOfficials},
    {"storm watch", "Hurricane Marisol", kStormWatchTemplates, kStormWatchTags, kStormDomains,
     kStormSlugs, kStormOfficials},
    {"aftermath", "Hurricane Marisol", kAftermathTemplates, kAftermathTags, kAftermathDomains,
     kAftermathSlugs, kAftermathOfficials},
    {"festival cancelled", "Harbour Lights Festival", kFestivalTemplates, kFestivalTags,
     kFestivalDomains, kFestivalSlugs, kFestivalOfficials},
    {"landfall", "Hurricane Marisol", kLandfallTemplates, kLandfallTags, kLandfallDomains,
     kLandfallSlugs, kLandfallOfficials},
    {"power outage", "Hurricane Marisol", kOutageTemplates, kOutageTags, kOutageDomains,
     kOutageSlugs, kOutageOfficials},
};

constexpr std::string_view kEmoji[] = {"😂|+2", "😱|-3", "🙏|+1", "🌀",    "⚡",    "☔",   "🌊",
                                       "💔|-3", "😢|-3", "👍|+2", "🎶|+1", "😍|+3", "😩|-2"};

// ---------------------------------------------------------------------------------------------
// People.

constexpr std::string_view kFirstNames[] = {"Jenna",         "Mike",
                                            "Sarah",         "Chris",
                                            "Ashley",        "Tyler",
                                            "Megan",         "Josh",
                                            "Katie",         "Ryan",
                                            "Brittany",      "Kevin",
                                            "Lauren",        "Matt",
                                            "Emily",         "Dave",
                                            "Amanda",        "Nick",
                                            "Rachel",        "Brian",
                                            "Nicole",        "Jason",
                                            "Hannah",        "Eric",
                                            "Kayla",         "Sean",
                                            "Olivia",        "Marcus",
                                            "Tasha",         "Derek",
                                            "Maya",          "Liam",
                                            "Grace",         "Owen",
                                            "Priya",         "Carlos",
                                            "Mei",           "Andre",
                                            "Fiona",         "Declan",
                                            "Tess",          "Jake",
                                            "Molly",         "Luis",
                                            "Dana",          "Caleb",
                                            "Erin",          "Sam",
                                            "Alexis",        "Trevor",
                                            "Bridget",       "Nate",
                                            "Paige",         "Colin",
                                            "Shauna",        "Devon",
                                            "Kelsey",        "Miguel",
                                            "Aisha",         "Ben",
                                            "José|Jose",     "Zoë|Zoe",
                                            "Chloé|Chloe",   "Renée|Renee",
                                            "Björn|Bjorn",   "Siobhán|Siobhan",
                                            "Ángel|Angel",   "François|Francois",
                                            "Noémie|Noemie", "Inés|Ines",
                                            "Łukasz|Lukasz", "Mateo",
                                            "Nora",          "Silas",
                                            "Ruby"};

constexpr std::string_view kLastNames[] = {
    "Morales",  "Sullivan",  "Chen",    "Walsh",      "Patel",      "Murphy", "Brennan", "Garcia",
    "Kowalski", "Nguyen",    "O'Neill", "Fitzgerald", "Hadley",     "Reyes",  "Dawson",  "Callahan",
    "Price",    "Lindqvist", "Okafor",  "Tran",       "McAllister", "Hughes", "Santos",  "Doyle",
    "Baker",    "Ross",      "Kim",     "Ferreira",   "Donovan",    "Pryce",  "Shaw",    "Mercer",
    "Quinn",    "Abernathy", "Costa",   "Rivera",     "Gallagher",  "Holt",   "Marsh",   "Whitaker",
    "Byrne",    "Novak",     "Sato",    "Keane",      "Delgado",    "Foster", "Lyons",   "Duffy",
    "Moreau",   "Castillo"};

constexpr std::string_view kHandleWords[] = {
    "salty",   "gull",   "harbor",  "tide",      "beach",   "coffee", "surf",  "wave",
    "pier",    "anchor", "marsh",   "driftwood", "lantern", "kite",   "seal",  "otter",
    "crab",    "shell",  "foggy",   "sandy",     "buoy",    "reef",   "storm", "sunny",
    "lobster", "sailor", "captain", "mermaid",   "clam",    "dune"};

constexpr std::string_view kTimeZones[] = {"Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Eastern Time (US & Canada)",
                                           "Central Time (US & Canada)",
                                           "Central Time (US & Canada)",
                                           "Pacific Time (US & Canada)",
                                           "Pacific Time (US & Canada)",
                                           "Atlantic Time (Canada)",
                                           "London",
                                           "Quito",
                                           "Hawaii",
                                           "Mountain Time (US & Canada)",
                                           "",
                                           "",
                                           "",
                                           "",
                                           ""};

}  // namespace

std::span<const NamedList> Lexicon() { return kLexicon; }

const TopicText& Topic(int topic) { return kTopics[topic]; }

WordList FestivalHype() { return kFestivalHypeTemplates; }

WordList Emoji() { return kEmoji; }

WordList Tails(int topic) {
  if (topic == kChatter) return kChatterTails;
  return kEventTails;
}

std::span<const OfficialAccount> Officials() { return kOfficials; }

WordList FirstNames() { return kFirstNames; }
WordList LastNames() { return kLastNames; }
WordList HandleWords() { return kHandleWords; }
WordList TimeZones() { return kTimeZones; }

}  // namespace sylvora::bench::vocabulary
